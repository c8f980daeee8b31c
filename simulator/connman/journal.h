#ifndef JOURNAL_H
#define JOURNAL_H

#include <QDBusMessage>
#include <QString>

/**
 * Formats a call as one line: the interface's last word, the method, the object, and the values
 * with their types: `Technology.SetProperty /net/connman/technology/ethernet ("Powered", <true>)`.
 */
QString journalLine(const QDBusMessage &call);

#endif
