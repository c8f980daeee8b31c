#ifndef BUSFAILURE_H
#define BUSFAILURE_H

#include <QString>

class QDBusMessage;

/**
 * Replies to @p message with org.freedesktop.DBus.Error.Failed, the error of all network methods.
 */
void sendFailure(const QString &text, const QDBusMessage &message);

#endif
