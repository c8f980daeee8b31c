#ifndef CONNMANSERVICE_H
#define CONNMANSERVICE_H

#include <QDBusVariant>
#include <QObject>
#include <QVariantMap>

/** The current ConnMan service of a network interface, if there is one. */
class ConnmanService : public QObject
{
    Q_OBJECT

public:
    /**
     * @param path the constant path() of an interface that never has a ConnMan service; otherwise
     *         empty
     */
    explicit ConnmanService(const QString &path) : m_path(path) {}

    /** The object path; empty until there is a service. */
    const QString &path() const { return m_path; }

    /** Makes the service at @p path the current one and subscribes to its changes. */
    void watch(const QString &path);

    /** Ends watch(): there is no current service. */
    void forget();

    /** Returns the properties; empty if ConnMan does not list the service. */
    QVariantMap properties() const;

    /** Returns the property "IPv4" in a form that can be sent; empty if there is none. */
    QVariantMap ipv4() const;

Q_SIGNALS:
    /** A property of the current service changed. */
    void propertyChanged(const QString &name, const QVariant &value);

private Q_SLOTS:
    void receive(const QString &name, const QDBusVariant &value);

private:
    QString m_path;
};

#endif
