#include "reply.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>

void answer(const QDBusMessage &call, const QList<QVariant> &values)
{
    QDBusConnection::systemBus().send(call.createReply(values));
}

void refuse(const QDBusMessage &call, const QString &name, const QString &text)
{
    QDBusConnection::systemBus().send(call.createErrorReply(name, text));
}

void refuse(const QDBusMessage &call, const char *name, const char *text)
{
    refuse(call, QStringLiteral("net.connman.Error.") + QLatin1String(name), QLatin1String(text));
}

void refuseUnknown(const QDBusMessage &call, const char *what)
{
    refuse(call, QStringLiteral("org.freedesktop.DBus.Error.") + QLatin1String(what),
           QStringLiteral("Method \"%1\" with signature \"%2\" on interface \"%3\" doesn't exist\n")
               .arg(call.member(), call.signature(), call.interface()));
}

QVariant withoutVariant(const QVariant &value)
{
    return value.userType() == qMetaTypeId<QDBusVariant>() ? value.value<QDBusVariant>().variant()
                                                           : value;
}

QString signatureOf(const QVariant &value)
{
    if (value.userType() == qMetaTypeId<QDBusArgument>())
        return value.value<QDBusArgument>().currentSignature();
    return QLatin1String(QDBusMetaType::typeToSignature(value.userType()));
}

QVariantMap mapOf(const QVariant &value)
{
    if (value.userType() == QMetaType::QVariantMap)
        return value.toMap();
    if (signatureOf(value) != QLatin1String("a{sv}"))
        return QVariantMap();
    return qdbus_cast<QVariantMap>(value.value<QDBusArgument>());
}

QString pathArgument(const QDBusMessage &call)
{
    return call.arguments().value(0).value<QDBusObjectPath>().path();
}
