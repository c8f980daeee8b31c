#include "remote.h"

#include "render.h"

#include <QDBusConnection>
#include <QXmlStreamReader>

namespace
{
const QString daemonName = QStringLiteral("com.orvendis.Strandel.BoardManager");
const int replyTimeout = 30000;

bool isMember(const QXmlStreamReader &reader)
{
    return reader.name() == QLatin1String("method") || reader.name() == QLatin1String("signal") ||
           reader.name() == QLatin1String("property");
}

/** The member whose element has just begun, read to that element's end. */
QString renderMember(QXmlStreamReader &reader)
{
    const auto attribute = [&reader](const char *name) {
        return reader.attributes().value(QLatin1String(name)).toString();
    };
    const QString kind = reader.name().toString();
    const QString start = kind + QLatin1Char(' ') + attribute("name");
    if (kind == QLatin1String("property")) {
        const QString property =
            start + QLatin1Char(' ') + attribute("type") + QLatin1Char(' ') + attribute("access");
        reader.skipCurrentElement();
        return property;
    }
    QString in;
    QString out;
    while (reader.readNextStartElement()) {
        const bool isResult =
            kind == QLatin1String("method") && attribute("direction") == QLatin1String("out");
        if (reader.name() == QLatin1String("arg"))
            (isResult ? out : in) += attribute("type");
        reader.skipCurrentElement();
    }
    return start + QLatin1Char('(') + in + QLatin1Char(')') +
           (out.isEmpty() ? QString() : QLatin1Char(' ') + out);
}
} // namespace

Remote::Remote(const QString &path, const QString &suffix)
    : Remote(daemonName, path, daemonName + QLatin1Char('.') + suffix)
{
}

Remote::Remote(const QString &service, const QString &path, const QString &interface)
    : m_service(service), m_path(path), m_interface(interface)
{
}

QString Remote::call(const QString &method, const QList<QVariant> &arguments) const
{
    return renderReply(reply(method, arguments));
}

QDBusMessage Remote::reply(const QString &method, const QList<QVariant> &arguments) const
{
    QDBusMessage message = QDBusMessage::createMethodCall(m_service, m_path, m_interface, method);
    message.setArguments(arguments);
    return QDBusConnection::systemBus().call(message, QDBus::Block, replyTimeout);
}

QString Remote::property(const QString &name) const
{
    return Remote(m_service, m_path, QStringLiteral("org.freedesktop.DBus.Properties"))
        .call(QStringLiteral("Get"), {m_interface, name});
}

QStringList Remote::members() const
{
    const QString document =
        Remote(m_service, m_path, QStringLiteral("org.freedesktop.DBus.Introspectable"))
            .reply(QStringLiteral("Introspect"))
            .arguments()
            .value(0)
            .toString();
    QXmlStreamReader reader(document);
    QStringList members;
    QString interface;
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (reader.name() == QLatin1String("interface"))
            interface = reader.attributes().value(QStringLiteral("name")).toString();
        else if (interface == m_interface && isMember(reader))
            members << renderMember(reader);
    }
    members.sort();
    return members;
}

QString renderReply(const QDBusMessage &reply)
{
    if (reply.type() == QDBusMessage::ErrorMessage)
        return reply.errorName() + QStringLiteral(": ") + reply.errorMessage();
    return render(reply.arguments());
}

QString failure(const char *name, const QString &text)
{
    return daemonName + QStringLiteral(".Error.") + QLatin1String(name) + QStringLiteral(": ") +
           text;
}

QString failed(const QString &text)
{
    return QStringLiteral("org.freedesktop.DBus.Error.Failed: ") + text;
}
