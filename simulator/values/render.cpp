#include "render.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusSignature>
#include <QDBusVariant>
#include <QSequentialIterable>
#include <QStringList>

#include <algorithm>

namespace
{
QString quoted(const QString &text)
{
    return QLatin1Char('"') + text + QLatin1Char('"');
}

QString renderMap(QStringList entries)
{
    std::sort(entries.begin(), entries.end());
    return QLatin1Char('{') + entries.join(QStringLiteral(", ")) + QLatin1Char('}');
}

QString renderElements(const QDBusArgument &argument)
{
    QStringList elements;
    while (!argument.atEnd())
        elements << render(argument.asVariant());
    return elements.join(QStringLiteral(", "));
}

QString renderCompound(const QDBusArgument &argument)
{
    QString text;
    switch (argument.currentType()) {
    case QDBusArgument::StructureType:
        argument.beginStructure();
        text = QLatin1Char('(') + renderElements(argument) + QLatin1Char(')');
        argument.endStructure();
        return text;
    case QDBusArgument::ArrayType:
        argument.beginArray();
        text = QLatin1Char('[') + renderElements(argument) + QLatin1Char(']');
        argument.endArray();
        return text;
    case QDBusArgument::MapType: {
        QStringList entries;
        argument.beginMap();
        while (!argument.atEnd()) {
            argument.beginMapEntry();
            const QString key = render(argument.asVariant());
            entries << key + QStringLiteral(": ") + render(argument.asVariant());
            argument.endMapEntry();
        }
        argument.endMap();
        return renderMap(entries);
    }
    default:
        return render(argument.asVariant());
    }
}

/** A list of one type, for example QList<uint>. */
QString renderSequence(const QSequentialIterable &sequence)
{
    QStringList elements;
    for (const QVariant &element : sequence)
        elements << render(element);
    return QLatin1Char('[') + elements.join(QStringLiteral(", ")) + QLatin1Char(']');
}

template <typename Map>
QString renderVariantMap(const Map &map)
{
    QStringList entries;
    for (auto entry = map.constBegin(); entry != map.constEnd(); ++entry)
        entries << quoted(entry.key()) + QStringLiteral(": <") + render(entry.value()) +
                       QLatin1Char('>');
    return renderMap(entries);
}
} // namespace

QString render(const QVariant &value)
{
    const int type = value.userType();
    if (type == qMetaTypeId<QDBusVariant>())
        return QLatin1Char('<') + render(value.value<QDBusVariant>().variant()) + QLatin1Char('>');
    if (type == qMetaTypeId<QDBusArgument>())
        return renderCompound(value.value<QDBusArgument>());
    if (type == qMetaTypeId<QDBusObjectPath>())
        return QStringLiteral("o:") + quoted(value.value<QDBusObjectPath>().path());
    if (type == qMetaTypeId<QDBusSignature>())
        return QStringLiteral("g:") + quoted(value.value<QDBusSignature>().signature());
    switch (type) {
    case QMetaType::QString:
        return quoted(value.toString());
    case QMetaType::Bool:
    case QMetaType::Int:
        return value.toString();
    case QMetaType::UInt:
        return QStringLiteral("u:") + value.toString();
    case QMetaType::UChar:
        return QStringLiteral("y:") + QString::number(value.value<uchar>());
    case QMetaType::Short:
        return QStringLiteral("n:") + QString::number(value.value<short>());
    case QMetaType::UShort:
        return QStringLiteral("q:") + QString::number(value.value<ushort>());
    case QMetaType::LongLong:
        return QStringLiteral("x:") + value.toString();
    case QMetaType::ULongLong:
        return QStringLiteral("t:") + value.toString();
    case QMetaType::Double:
        return QStringLiteral("d:") + value.toString();
    case QMetaType::QByteArray:
        return QStringLiteral("ay:") + quoted(QString::fromLatin1(value.toByteArray().toHex()));
    case QMetaType::QStringList: {
        const QStringList texts = value.toStringList();
        QStringList elements;
        for (const QString &element : texts)
            elements << quoted(element);
        return QLatin1Char('[') + elements.join(QStringLiteral(", ")) + QLatin1Char(']');
    }
    case QMetaType::QVariantList: {
        const QVariantList list = value.toList();
        QStringList elements;
        for (const QVariant &element : list)
            elements << QLatin1Char('<') + render(element) + QLatin1Char('>');
        return QLatin1Char('[') + elements.join(QStringLiteral(", ")) + QLatin1Char(']');
    }
    case QMetaType::QVariantMap:
        return renderVariantMap(value.toMap());
    default:
        return value.canConvert<QVariantList>()
                   ? renderSequence(value.value<QSequentialIterable>())
                   : QStringLiteral("?%1").arg(QLatin1String(value.typeName()));
    }
}

QString render(const QList<QVariant> &arguments)
{
    QStringList texts;
    for (const QVariant &argument : arguments)
        texts << render(argument);
    return QLatin1Char('(') + texts.join(QStringLiteral(", ")) + QLatin1Char(')');
}
