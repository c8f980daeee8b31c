#ifndef REMOTE_H
#define REMOTE_H

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QString>
#include <QVariant>

/** One interface of an object on the system bus, seen by a client. */
class Remote
{
public:
    /** @param suffix what follows the daemon's service name in the name of the interface */
    Remote(const QString &path, const QString &suffix);
    Remote(const QString &service, const QString &path, const QString &interface);

    /**
     * Calls @p method and waits for the first reply.
     *
     * @return the values of the reply as render() shows them, or, for an error, its name, a colon,
     *         a blank and its text
     */
    QString call(const QString &method, const QList<QVariant> &arguments = {}) const;

    /**
     * The same, with the reply as it came. An error of the daemon's that the introspection
     * documents do not list fails the test.
     */
    QDBusMessage reply(const QString &method, const QList<QVariant> &arguments = {}) const;

    /** Calls @p method without waiting for the reply. */
    QDBusPendingCall start(const QString &method, const QList<QVariant> &arguments = {}) const;

    /** Reads a property through org.freedesktop.DBus.Properties; rendered as by call(). */
    QString property(const QString &name) const;

private:
    QDBusMessage message(const QString &method, const QList<QVariant> &arguments) const;

    QString m_service;
    QString m_path;
    QString m_interface;
};

/** A reply as Remote::call() shows it; "no reply yet" for that of a call that is under way. */
QString renderReply(const QDBusMessage &reply);

/** The name of one of the daemon's own errors, followed by its text, as Remote::call() shows it. */
QString failure(const char *name, const QString &text);

/** The same for the error that the network interfaces send. */
QString failed(const QString &text);

#endif
