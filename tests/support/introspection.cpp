#include "introspection.h"

#include "remote.h"

#include <QDBusMessage>
#include <QXmlStreamReader>

namespace
{
QString attribute(const QXmlStreamReader &reader, const char *name)
{
    return reader.attributes().value(QLatin1String(name)).toString();
}

QString readMember(QXmlStreamReader &reader)
{
    const QString kind = reader.name().toString();
    const QString head = kind + QLatin1Char(' ') + attribute(reader, "name");
    if (kind == QLatin1String("property")) {
        const QString type = attribute(reader, "type");
        const QString access = attribute(reader, "access");
        reader.skipCurrentElement();
        return QStringList{head, type, access}.join(QLatin1Char(' '));
    }
    // Only the order of arguments in the same direction counts.
    QMap<QString, QStringList> arguments;
    while (reader.readNextStartElement()) {
        const QString usual = kind == QLatin1String("signal") ? "out" : "in";
        const QString direction = attribute(reader, "direction");
        QStringList words = {direction.isEmpty() ? usual : direction, attribute(reader, "type")};
        // The adaptors do not name the results of methods.
        if (kind == QLatin1String("signal") || words.first() == QLatin1String("in"))
            words << attribute(reader, "name");
        if (reader.name() == QLatin1String("arg"))
            arguments[words.first()] << words.join(QLatin1Char(' '));
        reader.skipCurrentElement();
    }
    const QStringList all = arguments.take("in") + arguments.take("out");
    return head + QLatin1Char('(') + all.join(QStringLiteral(", ")) + QLatin1Char(')');
}

QStringList readInterface(QXmlStreamReader &reader)
{
    QStringList members;
    while (reader.readNextStartElement()) {
        if (reader.name() == QLatin1String("annotation"))
            reader.skipCurrentElement();
        else
            members << readMember(reader);
    }
    members.sort();
    return members;
}
} // namespace

Introspection readIntrospection(const QByteArray &document)
{
    Introspection object;
    QXmlStreamReader reader(document);
    if (reader.readNextStartElement() && reader.name() == QLatin1String("node"))
        object.path = attribute(reader, "name");
    while (reader.readNextStartElement()) {
        const QString name = attribute(reader, "name");
        if (reader.name() == QLatin1String("interface"))
            object.interfaces.insert(name, readInterface(reader));
        else
            reader.skipCurrentElement();
    }
    if (reader.hasError())
        object.error = reader.errorString();
    return object;
}

Introspection introspect(const QString &path)
{
    const Remote object(QStringLiteral("com.orvendis.Strandel.BoardManager"), path,
                        QStringLiteral("org.freedesktop.DBus.Introspectable"));
    const QDBusMessage reply = object.reply(QStringLiteral("Introspect"));
    if (reply.type() == QDBusMessage::ErrorMessage) {
        Introspection failure;
        failure.error = reply.errorMessage();
        return failure;
    }
    return readIntrospection(reply.arguments().value(0).toString().toUtf8());
}
