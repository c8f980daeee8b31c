#ifndef HANDS_H
#define HANDS_H

#include "instrument.h"

#include <QString>
#include <QStringList>

/** The elements that a user can press or drag, the innermost first. */
QStringList handElements();

/** Returns true if the element is dragged to a value, not only pressed. */
bool isDragged(const QString &element);

/**
 * Returns the shell command to run inside the virtual instrument when @p element is pressed, or
 * dragged to @p place.
 *
 * @param place the position on the element from left to right, 0 to 1
 * @return empty if nothing happens
 */
QString commandFor(const QString &element, double place, const Instrument &instrument);

/** Returns these words as one command for a shell, quoted where necessary. */
QString shellCommand(const QStringList &words);

/**
 * Returns what a user types in a terminal to run @p command inside the virtual instrument: the
 * program that started the instrument, then "--" and the command.
 */
QString asTyped(const QString &command);

/** The operations of the hardware libraries that can have a fault. */
QStringList faultOperations();

/** A fault: its text in the menu, and the words to write to the fault's file on the board. */
struct FaultChoice {
    const char *title;
    const char *words;
};
Q_DECLARE_TYPEINFO(FaultChoice, Q_PRIMITIVE_TYPE);
extern const QVector<FaultChoice> faultChoices;

/** Return the commands that give @p operation a fault, remove its fault, and remove all faults. */
QString faultCommand(const QString &operation, const QString &words);
QString healCommand(const QString &operation);
QString healAllCommand();

#endif
