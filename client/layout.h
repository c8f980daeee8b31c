#ifndef LAYOUT_H
#define LAYOUT_H

#include <QString>

/*
 * Text for a terminal. Pure: text in, text out.
 */

/**
 * @p text with no line longer than @p width, as far as there are blanks to break it at.
 *
 * What is broken off goes on below the value that it belongs to: below the text behind the first
 * gap of two blanks, or indented by four. A width below 20 changes nothing.
 */
QString wrapped(const QString &text, int width);

/**
 * @p text with colours: LEDs that are lit in their own colour, states and battery levels by what
 * they mean. Only escape sequences are added.
 */
QString coloured(const QString &text);

/** @p text in red. */
QString alarming(const QString &text);

#endif
