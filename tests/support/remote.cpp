#include "remote.h"

#include "deadline.h"
#include "documentederrors.h"
#include "render.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QTest>

const QString daemonName = QStringLiteral("com.orvendis.Strandel.BoardManager");

namespace
{
/** Fails the test if the daemon (not the bus) has sent an undocumented error. */
void expectDocumented(const QDBusMessage &call, const QDBusMessage &reply)
{
    if (call.service() == daemonName && reply.type() == QDBusMessage::ErrorMessage &&
        reply.service().startsWith(QLatin1Char(':')) &&
        !isDocumentedError(call.interface(), call.member(), reply.errorName(),
                           reply.errorMessage()))
        QTest::qFail(qPrintable(call.interface() + QLatin1Char('.') + call.member() +
                                QStringLiteral(" sent an error that is not documented: ") +
                                renderReply(reply)),
                     __FILE__, __LINE__);
}
} // namespace

bool isOnTheBus(const QString &service)
{
    return QDBusConnection::systemBus().interface()->isServiceRegistered(service);
}

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
    const QDBusMessage call = message(method, arguments);
    const QDBusMessage reply = QDBusConnection::systemBus().call(call, QDBus::Block, deadlineMs);
    expectDocumented(call, reply);
    return reply;
}

QDBusPendingCall Remote::start(const QString &method, const QList<QVariant> &arguments) const
{
    return QDBusConnection::systemBus().asyncCall(message(method, arguments), deadlineMs);
}

QDBusMessage Remote::message(const QString &method, const QList<QVariant> &arguments) const
{
    QDBusMessage call = QDBusMessage::createMethodCall(m_service, m_path, m_interface, method);
    call.setArguments(arguments);
    return call;
}

QString Remote::property(const QString &name) const
{
    return Remote(m_service, m_path, QStringLiteral("org.freedesktop.DBus.Properties"))
        .call(QStringLiteral("Get"), {m_interface, name});
}

QString renderReply(const QDBusMessage &reply)
{
    if (reply.type() == QDBusMessage::InvalidMessage)
        return QStringLiteral("no reply yet");
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
