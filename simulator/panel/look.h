#ifndef LOOK_H
#define LOOK_H

#include "instrument.h"

#include <QPair>

/** The appearance of the drawing's elements, by their IDs. */
struct Look {
    /** 0: invisible; 1: as drawn. */
    QMap<QString, double> opacities;
    /** The start and end of a rectangle, as fractions of its original width. */
    QMap<QString, QPair<double, double>> spans;
    QMap<QString, QString> texts;

    bool operator==(const Look &other) const
    {
        return opacities == other.opacities && spans == other.spans && texts == other.texts;
    }
    bool operator!=(const Look &other) const { return !(*this == other); }
};

/** The ends of a value's scale, and whether it is logarithmic. */
struct Scale {
    double lowest;
    double highest;
    bool isLogarithmic;

    /** Returns the position of @p value on the scale, 0 to 1. */
    double placeOf(double value) const;
    /** Returns the value at @p place, which is limited to 0 to 1. */
    double valueAt(double place) const;
};

extern const Scale temperatureScale;
extern const Scale lightScale;
extern const Scale signalScale;

/** The longest command that the drawing has room for, in characters. */
constexpr int longestCommand = 100;

/** The number of access points with a row in the drawing. */
constexpr int airRows = 6;

/**
 * Returns the opacity of an LED at the time @p milliseconds. @p state is the content of the LED's
 * file on the board, for example "BLINK_1HZ".
 */
double ledOpacity(const QByteArray &state, qint64 milliseconds);

/**
 * Returns the appearance of @p instrument.
 *
 * @param milliseconds the time of any monotonic clock, for blinking LEDs
 */
Look lookOf(const Instrument &instrument, qint64 milliseconds);

#endif
