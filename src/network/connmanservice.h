#ifndef CONNMANSERVICE_H
#define CONNMANSERVICE_H

#include <QDBusVariant>
#include <QObject>
#include <QVariantMap>

/** The ConnMan service that a network interface uses, where it uses one. */
class ConnmanService : public QObject
{
    Q_OBJECT

public:
    /** @param path the name of an interface that never uses one of ConnMan's */
    explicit ConnmanService(const QString &path) : m_path(path) {}

    /** Its object path; empty until there is one. */
    const QString &path() const { return m_path; }

    /** Makes the service at @p path the current one and listens to its changes. */
    void watch(const QString &path);

    /** Ends watch(): there is no current service. */
    void forget();

    /** Its properties; empty where ConnMan lists no such service. */
    QVariantMap properties() const;

    /** Its property "IPv4", as it can be sent on; empty where it has none. */
    QVariantMap ipv4() const;

Q_SIGNALS:
    /** A property changed, while it is the current service. */
    void propertyChanged(const QString &name, const QVariant &value);

private Q_SLOTS:
    void receive(const QString &name, const QDBusVariant &value);

private:
    QString m_path;
};

#endif
