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
     * @param path a fixed path() for an interface that never has a ConnMan service; empty for an
     *         interface that can have a service
     */
    explicit ConnmanService(const QString &path) : m_path(path) {}

    /** The current service's object path, or the constructor's fixed path; empty without either. */
    const QString &path() const { return m_path; }

    /** Makes the service at @p path the current one and subscribes to its changes. */
    void watch(const QString &path);

    /** Ends watch(): there is no current service. */
    void forget();

    /** Returns the properties of the current service; empty if ConnMan does not list it. */
    QVariantMap properties() const;

    /**
     * Returns the property "IPv4" of the current service, in a form that can be sent to clients;
     * empty if there is no such property.
     */
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
