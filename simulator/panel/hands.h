#ifndef HANDS_H
#define HANDS_H

#include "instrument.h"

#include <QString>
#include <QStringList>

/** The elements that a hand can press or drag, the innermost first. */
QStringList handElements();

/** Whether the hand drags a value there, and does not only press. */
bool isDragged(const QString &element);

/**
 * The command, for a shell in the world, that does what a hand does there.
 *
 * @param place where on the element from left to right, 0 to 1, the hand is
 * @return empty where there is nothing to be done
 */
QString commandFor(const QString &element, double place, const Instrument &instrument);

/** How somebody types the same command outside, with the name that the instrument was started by.
 */
QString asTyped(const QString &command);

/** The operations of the hardware libraries that a fault can be given to. */
QStringList faultOperations();

/** What a fault does to a call, in the words of a menu, and the words of its file. */
struct FaultChoice {
    const char *title;
    const char *words;
};
extern const QVector<FaultChoice> faultChoices;

/** The commands that give a fault to @p operation, take it away, and take all away. */
QString faultCommand(const QString &operation, const QString &words);
QString healCommand(const QString &operation);
QString healAllCommand();

#endif
