#include "drawing.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

#include <algorithm>

namespace
{
/** Keep four pictures: LEDs that blink at 1 Hz and at 3 Hz have four combinations of on and off. */
constexpr int mostPictures = 4;
} // namespace

Drawing::Drawing(const QString &file)
{
    QFile source(file);
    if (!source.open(QIODevice::ReadOnly) || !m_document.setContent(&source))
        return;
    collect(m_document.documentElement());
    QSvgRenderer renderer(m_document.toByteArray());
    m_size = renderer.viewBoxF().size();
    for (auto element = m_elements.constBegin(); element != m_elements.constEnd(); ++element)
        m_bounds.insert(element.key(), renderer.transformForElement(element.key())
                                           .mapRect(renderer.boundsOnElement(element.key())));
}

void Drawing::collect(const QDomElement &element)
{
    const QString id = element.attribute(QStringLiteral("id"));
    if (!id.isEmpty()) {
        m_elements.insert(id, element);
        m_lefts.insert(id, element.attribute(QStringLiteral("x")).toDouble());
        m_widths.insert(id, element.attribute(QStringLiteral("width")).toDouble());
    }
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement())
        collect(child);
}

QStringList Drawing::missing(const Look &look) const
{
    QStringList ids = look.opacities.keys();
    ids << look.spans.keys() << look.texts.keys();
    const auto isDrawn = [this](const QString &id) { return has(id); };
    ids.erase(std::remove_if(ids.begin(), ids.end(), isDrawn), ids.end());
    return ids;
}

void Drawing::apply(const Look &look)
{
    for (auto it = look.opacities.constBegin(); it != look.opacities.constEnd(); ++it) {
        QDomElement element = m_elements.value(it.key());
        element.setAttribute(QStringLiteral("display"),
                             it.value() > 0 ? QStringLiteral("inline") : QStringLiteral("none"));
        element.setAttribute(QStringLiteral("opacity"), it.value());
    }
    for (auto it = look.spans.constBegin(); it != look.spans.constEnd(); ++it) {
        QDomElement element = m_elements.value(it.key());
        const double width = m_widths.value(it.key());
        element.setAttribute(QStringLiteral("x"), m_lefts.value(it.key()) + it->first * width);
        element.setAttribute(QStringLiteral("width"), (it->second - it->first) * width);
        if (it.key().endsWith(QLatin1String("-level")))
            placeKnob(it.key().chopped(5) + QStringLiteral("knob"),
                      m_lefts.value(it.key()) + it->second * width);
    }
    for (auto it = look.texts.constBegin(); it != look.texts.constEnd(); ++it) {
        QDomElement element = m_elements.value(it.key());
        while (element.hasChildNodes())
            element.removeChild(element.firstChild());
        element.appendChild(m_document.createTextNode(it.value()));
    }
}

void Drawing::placeKnob(const QString &id, double x)
{
    QDomElement knob = m_elements.value(id);
    knob.setAttribute(QStringLiteral("x"), x - m_widths.value(id) / 2);
}

QRectF Drawing::placeIn(const QSize &size) const
{
    const QSizeF scaled = m_size.scaled(QSizeF(size), Qt::KeepAspectRatio);
    return {QPointF((size.width() - scaled.width()) / 2, (size.height() - scaled.height()) / 2),
            scaled};
}

QImage Drawing::render(const QSize &size) const
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(QColor(0xe8, 0xed, 0xf1));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QSvgRenderer renderer(m_document.toByteArray());
    renderer.render(&painter, placeIn(size));
    return image;
}

QImage Drawing::picture(const Look &look, const QSize &size)
{
    if (!m_pictures.isEmpty() && m_pictures.first().second.size() != size)
        m_pictures.clear();
    for (const auto &known : qAsConst(m_pictures)) {
        if (known.first == look)
            return known.second;
    }
    if (m_pictures.size() == mostPictures)
        m_pictures.removeFirst();
    apply(look);
    m_pictures.append({look, render(size)});
    return m_pictures.last().second;
}
