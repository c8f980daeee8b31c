#ifndef LAYOUT_H
#define LAYOUT_H

#include <QString>

/*
 * Text for a terminal. Pure: text in, text out.
 */

/**
 * Breaks the lines of @p text at blanks so that they fit @p width.
 *
 * Indents the continuation of a line to the second column: the text after the line's first gap of
 * at least two blanks. Indents by four if the line has no such gap, or has it in the right half of
 * @p width. If @p width is below 20, returns @p text unchanged.
 */
QString wrapped(const QString &text, int width);

/**
 * Adds colours to @p text: lit LEDs in their own colour, states and battery levels by their
 * meaning. Adds only escape sequences.
 */
QString coloured(const QString &text);

/** Returns @p text in red. */
QString alarming(const QString &text);

#endif
