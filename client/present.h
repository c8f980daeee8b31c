#ifndef PRESENT_H
#define PRESENT_H

#include <QJsonValue>
#include <QString>
#include <QVariant>

/*
 * Values of the bus for people and for machines. They have been made plain before: see busvalue.h.
 */

/**
 * A value on one line: lists with commas, bytes as text where they are, else hexadecimal; every
 * number with @p unit behind it.
 */
QString inlineText(const QVariant &value, const QString &unit = QString());

/** A reply for people: a map as aligned lines, anything else on one line; empty for no value. */
QString replyText(const QVariantList &values, const QString &unit = QString());

/** The value for machines: bytes as one character each, numbers as numbers. */
QJsonValue toJson(const QVariant &value);

/** A reply for machines: its one value, null where there is none. */
QJsonValue replyJson(const QVariantList &values);

/** Lines of a table: a name and a value, the values aligned. */
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
