#include "arguments.h"

#include "error.h"
#include "limitedmap.h"

#include <QDBusArgument>
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

bool hasMapWithinLimits(const QDBusMessage &message)
{
    const QVariant map = message.arguments().value(0);
    if (map.userType() != qMetaTypeId<QDBusArgument>() ||
        isWithinLimits(map.value<QDBusArgument>()))
        return true;
    sendErrorReply(QDBusError::errorString(QDBusError::LimitsExceeded),
                   QStringLiteral("The map holds too many values"), message);
    return false;
}
