#ifndef REMOTE_H
#define REMOTE_H

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QString>
#include <QVariant>

/** The daemon's bus name. */
extern const QString daemonName;

/** Returns true if a program on the system bus owns the name @p service. */
bool isOnTheBus(const QString &service);

/** One interface of an object on the system bus, from a client's view. */
class Remote
{
public:
    /**
     * @param suffix the last part of the interface's name, after the daemon's service name
     */
    Remote(const QString &path, const QString &suffix);
    Remote(const QString &service, const QString &path, const QString &interface);

    /**
     * Calls @p method and waits for the first reply.
     *
     * @return the values of the reply as render() formats them; for an error its name, a colon, a
     *         blank and its text
     */
    QString call(const QString &method, const QList<QVariant> &arguments = {}) const;

    /**
     * The same, with the unmodified reply. Fails the test for an error of the daemon that the
     * introspection documents do not list.
     */
    QDBusMessage reply(const QString &method, const QList<QVariant> &arguments = {}) const;

    /** Calls @p method without waiting for the reply. */
    QDBusPendingCall start(const QString &method, const QList<QVariant> &arguments = {}) const;

    /** Reads a property through org.freedesktop.DBus.Properties; formatted as by call(). */
    QString property(const QString &name) const;

private:
    QDBusMessage message(const QString &method, const QList<QVariant> &arguments) const;

    QString m_service;
    QString m_path;
    QString m_interface;
};

/** Formats a reply as Remote::call() does; "no reply yet" while the call is pending. */
QString renderReply(const QDBusMessage &reply);

/** The name of one of the daemon's own errors and its text, as Remote::call() formats them. */
QString failure(const char *name, const QString &text);

/** The same for the error of the network interfaces. */
QString failed(const QString &text);

#endif
