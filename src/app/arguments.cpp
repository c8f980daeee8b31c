#include "arguments.h"

#include "error.h"

#include <QDBusError>
#include <QDBusMessage>

bool hasNoArguments(const QDBusMessage &message)
{
    if (message.signature().isEmpty())
        return true;
    const QString text =
        QStringLiteral("No such method '%1' in interface '%2' at object path "
                       "'%3' (signature '%4')")
            .arg(message.member(), message.interface(), message.path(), message.signature());
    sendErrorReply(QDBusError::errorString(QDBusError::UnknownMethod), text, message);
    return false;
}
