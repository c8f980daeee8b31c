#ifndef BUSFAILURE_H
#define BUSFAILURE_H

#include <QString>

class QDBusMessage;

/**
 * Replies to @p message with org.freedesktop.DBus.Error.Failed, the error with which the methods of
 * Ethernet, the Wi-Fi station and the access point fail.
 */
void sendFailure(const QString &text, const QDBusMessage &message);

#endif
