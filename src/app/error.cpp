#include "error.h"

#include <QDBusConnection>
#include <QDBusMessage>

void sendErrorReply(int code, const QString &text, const QDBusMessage &message)
{
    sendErrorReply(Error::nameOf(code), text, message);
}

void sendErrorReply(const QString &name, const QString &text, const QDBusMessage &message)
{
    QDBusConnection::systemBus().send(message.createErrorReply(name, text));
}
