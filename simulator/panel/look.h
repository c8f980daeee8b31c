#ifndef LOOK_H
#define LOOK_H

#include "instrument.h"

#include <QPair>

/** What the elements of the drawing look like, by their ids. */
struct Look {
    /** 0: not seen; 1: as drawn. */
    QMap<QString, double> opacities;
    /** From where to where a rectangle reaches, as parts of its width as drawn. */
    QMap<QString, QPair<double, double>> spans;
    QMap<QString, QString> texts;

    bool operator==(const Look &other) const
    {
        return opacities == other.opacities && spans == other.spans && texts == other.texts;
    }
    bool operator!=(const Look &other) const { return !(*this == other); }
};

/** The ends of a value's scale, and whether it grows by factors. */
struct Scale {
    double lowest;
    double highest;
    bool isLogarithmic;

    /** Where @p value is on it, 0 to 1. */
    double placeOf(double value) const;
    /** The value at @p place, which is limited to 0 to 1. */
    double valueAt(double place) const;
};

extern const Scale temperatureScale;
extern const Scale lightScale;
extern const Scale signalScale;

/** How many access points have a row in the drawing. */
const int airRows = 6;

/** What an LED that shows @p state, as the board's file names it, looks like at a time. */
double ledOpacity(const QByteArray &state, qint64 milliseconds);

/**
 * What @p instrument looks like.
 *
 * @param milliseconds of any clock that does not jump; LEDs blink by it
 */
Look lookOf(const Instrument &instrument, qint64 milliseconds);

#endif
