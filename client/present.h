#ifndef PRESENT_H
#define PRESENT_H

#include <QJsonValue>
#include <QString>
#include <QVariant>

/* Formats plain values of the bus (see busvalue.h) for people and for machines. */

/**
 * Returns @p value on one line: lists with commas, bytes as text if all are printable, otherwise in
 * hexadecimal, and every number with @p unit.
 */
QString inlineText(const QVariant &value, const QString &unit = QString());

/**
 * Returns a reply for people: a map as aligned lines, any other value on one line; empty for a
 * reply without values.
 */
QString replyText(const QVariantList &values, const QString &unit = QString());

/** Returns @p value as JSON. A byte array becomes a text with one character for each byte. */
QJsonValue toJson(const QVariant &value);

/** Returns a reply as JSON: its first value, or null. */
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
