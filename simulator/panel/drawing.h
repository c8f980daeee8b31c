#ifndef DRAWING_H
#define DRAWING_H

#include "look.h"

#include <QDomDocument>
#include <QHash>
#include <QImage>
#include <QPointF>
#include <QRectF>
#include <QSizeF>

/**
 * The panel as it is drawn in an SVG file. Its elements are known by their ids; all that is done to
 * them is in a Look.
 */
class Drawing
{
public:
    /** @p file that is no drawing gives one of no size, without elements. */
    explicit Drawing(const QString &file);

    QSizeF size() const { return m_size; }
    bool has(const QString &id) const { return m_elements.contains(id); }

    /** The ids in @p look for which there is no element. */
    QStringList missing(const Look &look) const;

    /** Where an element is as it is drawn, in the drawing's own units; empty where there is none.
     */
    QRectF bounds(const QString &id) const { return m_bounds.value(id); }

    /** Gives the elements this look. */
    void apply(const Look &look);

    /** Draws it in the middle of an image of @p size, as large as it fits. */
    QImage render(const QSize &size) const;

    /** Where render() puts the drawing in an image of @p size. */
    QRectF placeIn(const QSize &size) const;

private:
    void collect(const QDomElement &element);

    QDomDocument m_document;
    QHash<QString, QDomElement> m_elements;
    QHash<QString, QRectF> m_bounds;
    /** Of the drawing as it came: what a rectangle reaches is parts of these. */
    QHash<QString, double> m_lefts;
    QHash<QString, double> m_widths;
    QSizeF m_size;
};

#endif
