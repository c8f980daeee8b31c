#ifndef PRESENT_H
#define PRESENT_H

#include <QJsonValue>
#include <QString>
#include <QVariant>

/* Formats plain values of the bus (see busvalue.h) for people and for machines. */

/**
 * A value on one line: lists with commas, bytes as text if they are text, otherwise hexadecimal;
 * every number with @p unit.
 */
QString inlineText(const QVariant &value, const QString &unit = QString());

/** A reply for people: a map as aligned lines, anything else on one line; empty for no value. */
QString replyText(const QVariantList &values, const QString &unit = QString());

/** A value for machines: bytes as one character each, numbers as numbers. */
QJsonValue toJson(const QVariant &value);

/** A reply for machines: its one value, or null. */
QJsonValue replyJson(const QVariantList &values);

/** A table of names and aligned values. */
class Lines
{
public:
    void add(const QString &name, const QString &value);
    QString text(const QString &indent = QString()) const;
    bool isEmpty() const { return m_rows.isEmpty(); }

private:
    QList<QPair<QString, QString>> m_rows;
};

#endif
