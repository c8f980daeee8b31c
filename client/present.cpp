#include "present.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QStringList>

#include <algorithm>

namespace
{
QString bytesText(const QByteArray &bytes)
{
    QByteArray text = bytes;
    while (text.endsWith('\0'))
        text.chop(1);
    const bool isPrintable =
        std::all_of(text.begin(), text.end(), [](char byte) { return byte >= ' ' && byte <= '~'; });
    return isPrintable ? QString::fromLatin1(text)
                       : QStringLiteral("0x") + QString::fromLatin1(bytes.toHex());
}
} // namespace

QString inlineText(const QVariant &value, const QString &unit)
{
    switch (value.userType()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Double:
        return (value.toString() + QLatin1Char(' ') + unit).trimmed();
    case QMetaType::QByteArray:
        return bytesText(value.toByteArray());
    case QMetaType::UChar:
        return inlineText(value.toUInt(), unit);
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("yes") : QStringLiteral("no");
    case QMetaType::QVariantMap: {
        QStringList entries;
        const QVariantMap map = value.toMap();
        for (auto entry = map.constBegin(); entry != map.constEnd(); ++entry)
            entries << entry.key() + QLatin1Char('=') + inlineText(entry.value(), unit);
        return entries.join(QStringLiteral(", "));
    }
    default:
        break;
    }
    if (value.userType() != QMetaType::QString && value.canConvert<QVariantList>()) {
        const QVariantList elements = value.value<QVariantList>();
        QStringList texts;
        for (const QVariant &element : elements)
            texts << inlineText(element, unit);
        return texts.join(QStringLiteral(", "));
    }
    return value.toString();
}

QString replyText(const QVariantList &values, const QString &unit)
{
    if (values.isEmpty())
        return QString();
    if (values.first().userType() != QMetaType::QVariantMap)
        return inlineText(values.first(), unit) + QLatin1Char('\n');
    Lines lines;
    const QVariantMap map = values.first().toMap();
    for (auto entry = map.constBegin(); entry != map.constEnd(); ++entry)
        lines.add(entry.key(), inlineText(entry.value(), unit));
    return lines.text();
}

QJsonValue toJson(const QVariant &value)
{
    if (value.userType() == QMetaType::QByteArray) {
        const QByteArray bytes = value.toByteArray();
        return QString::fromLatin1(bytes.constData(), bytes.size());
    }
    if (value.userType() == QMetaType::QVariantMap) {
        QJsonObject object;
        const QVariantMap map = value.toMap();
        for (auto entry = map.constBegin(); entry != map.constEnd(); ++entry)
            object.insert(entry.key(), toJson(entry.value()));
        return object;
    }
    if (value.userType() != QMetaType::QString && value.canConvert<QVariantList>()) {
        const QVariantList elements = value.value<QVariantList>();
        QJsonArray array;
        for (const QVariant &element : elements)
            array.append(toJson(element));
        return array;
    }
    switch (value.userType()) {
    case QMetaType::UChar:
    case QMetaType::Short:
    case QMetaType::UShort:
        return value.toInt();
    default:
        return QJsonValue::fromVariant(value);
    }
}

QJsonValue replyJson(const QVariantList &values)
{
    return values.isEmpty() ? QJsonValue() : toJson(values.first());
}

void Lines::add(const QString &name, const QString &value)
{
    m_rows.append({name, value});
}

QString Lines::text(const QString &indent) const
{
    int width = 0;
    for (const auto &row : m_rows)
        width = std::max(width, row.first.size());
    QString text;
    for (const auto &row : m_rows) {
        QString line = indent + row.first.leftJustified(width + 2) + row.second;
        while (line.endsWith(QLatin1Char(' ')))
            line.chop(1);
        text += line + QLatin1Char('\n');
    }
    return text;
}
