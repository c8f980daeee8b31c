#ifndef REPLY_H
#define REPLY_H

#include <QDBusMessage>
#include <QString>
#include <QVariant>

/** Replies to @p call with these values. */
void answer(const QDBusMessage &call, const QList<QVariant> &values = {});

/** Replies to @p call with an error. */
void refuse(const QDBusMessage &call, const QString &name, const QString &text);

/** Replies to @p call with an error of ConnMan's own, such as "InvalidArguments". */
void refuse(const QDBusMessage &call, const char *name, const char *text);

/**
 * Replies to @p call as Qt D-Bus does when the object or the method does not exist. @p what is the
 * last part of the error's name: "UnknownObject" or "UnknownMethod".
 */
void refuseUnknown(const QDBusMessage &call, const char *what);

/** Returns @p value without the variant around it. */
QVariant withoutVariant(const QVariant &value);

/** Returns the signature of a value that came from the bus. */
QString signatureOf(const QVariant &value);

/** Returns @p value as a map; empty unless its type is a{sv}. */
QVariantMap mapOf(const QVariant &value);

/** Returns the first argument of @p call, an object path; empty if the argument has another type.
 */
QString pathArgument(const QDBusMessage &call);

#endif
