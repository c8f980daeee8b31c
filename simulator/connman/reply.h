#ifndef REPLY_H
#define REPLY_H

#include <QDBusMessage>
#include <QString>
#include <QVariant>

/** Answers @p call with these values. */
void answer(const QDBusMessage &call, const QList<QVariant> &values = {});

/** Answers @p call with an error. */
void refuse(const QDBusMessage &call, const QString &name, const QString &text);

/** Answers @p call with an error of ConnMan's own, such as "InvalidArguments". */
void refuse(const QDBusMessage &call, const char *name, const char *text);

/** Answers @p call as Qt D-Bus does where it finds nothing: "UnknownMethod" or such. */
void refuseUnknown(const QDBusMessage &call, const char *what);

/** @p value, taken out of its variant where it is in one. */
QVariant withoutVariant(const QVariant &value);

/** The signature of a value that came from the bus. */
QString signatureOf(const QVariant &value);

/** @p value as a map; an empty one where it is none of type a{sv}. */
QVariantMap mapOf(const QVariant &value);

#endif
