#ifndef DRAWING_H
#define DRAWING_H

#include "look.h"

#include <QDomDocument>
#include <QHash>
#include <QImage>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QVector>

/**
 * The panel's drawing from an SVG file. Its elements have IDs; a Look describes all changes to
 * them.
 */
class Drawing
{
public:
    /** Reads the SVG @p file; if this fails, the drawing is empty. */
    explicit Drawing(const QString &file);

    QSizeF size() const { return m_size; }
    bool has(const QString &id) const { return m_elements.contains(id); }

    /** Returns the IDs in @p look that have no element. */
    QStringList missing(const Look &look) const;

    /**
     * Returns the original bounds of an element, in the drawing's own units; empty if there is
     * none.
     */
    QRectF bounds(const QString &id) const { return m_bounds.value(id); }

    /** Applies this look to the elements. */
    void apply(const Look &look);

    /** Draws the elements centred in an image of @p size, as large as possible. */
    QImage render(const QSize &size) const;

    /**
     * Applies @p look and returns the rendered image. Keeps the last images: blinking LEDs
     * alternate between a few looks.
     */
    QImage picture(const Look &look, const QSize &size);

    /** Returns the rectangle of the drawing in an image of @p size. */
    QRectF placeIn(const QSize &size) const;

private:
    void collect(const QDomElement &element);
    void placeKnob(const QString &id, double x);

    QDomDocument m_document;
    QHash<QString, QDomElement> m_elements;
    QHash<QString, QRectF> m_bounds;
    /** Left edges and widths of the elements as drawn; the spans of a Look refer to them. */
    QHash<QString, double> m_lefts;
    QHash<QString, double> m_widths;
    QSizeF m_size;
    /** The last images of picture(), all of the same size, the oldest first. */
    QVector<QPair<Look, QImage>> m_pictures;
};

#endif
