#ifndef CONNMAN_H
#define CONNMAN_H

#include "agents.h"
#include "listedobject.h"
#include "still.h"

#include <QDBusMessage>
#include <QObject>
#include <QSet>

/**
 * The stand-in's model of ConnMan: its technologies, services and agents, and the methods of the
 * manager, of a technology and of a service.
 *
 * Refuses invalid calls with ConnMan's errors. A Behaviour carries out the calls that change
 * something.
 */
class Connman : public QObject
{
    Q_OBJECT

public:
    explicit Connman(QObject *parent);

    /**
     * Carries out @p call and replies, immediately or, for Connect, after the agent has answered.
     */
    void serve(const QDBusMessage &call);

    void setTechnologies(const ListedObjects &technologies);
    void setServices(const ListedObjects &services);

    /** Sets the behaviour that carries out the accepted calls; null for Still. */
    void setBehaviour(Behaviour *behaviour);

    void addService(const ListedObject &service);
    void dropService(const QString &path);

    /** Sets whether technologies have the method AsyncScan, which some versions of ConnMan lack. */
    void setAsyncScan(bool exists);

    /**
     * Sets a property of a service or a technology; adds it if it is missing.
     *
     * @return false without an object of that path
     */
    bool storeProperty(const QString &path, const QString &name, const QVariant &value);

    /** Returns a property of a service or a technology; invalid if there is none. */
    QVariant property(const QString &path, const QString &name) const;

    /**
     * Sends PropertyChanged of the service or the technology; returns false without such an object.
     */
    bool announceProperty(const QString &path, const QString &name);

    /**
     * Sends ServicesChanged with all services and the paths of removed services. The list has the
     * properties only of services that the previous list did not contain.
     */
    void announceServices();

    /**
     * Returns true if clients know the object: a technology always, a service if the last announced
     * list contained it.
     */
    bool isAnnounced(const QString &path) const;

    /** Sends PropertyChanged of the manager's state. */
    void announceState();

    /** Makes Connect of this service ask the caller's agent for @p fields before it replies. */
    void askOnConnect(const QString &service, const QVariantMap &fields);

    Agents &agents() { return m_agents; }

private:
    using Serve = void (Connman::*)(const QDBusMessage &call);
    struct Method {
        const char *name;
        const char *signature;
        Serve serve;
    };
    static const Method methods[];

    const Method *findMethod(const QDBusMessage &call) const;
    QString interfaceAt(const QString &path) const;
    const ListedObject *find(const QString &path) const;
    ListedObject *find(const QString &path);
    QString state() const;

    void getManagerProperties(const QDBusMessage &call);
    void getTechnologies(const QDBusMessage &call);
    void getServices(const QDBusMessage &call);
    void registerAgent(const QDBusMessage &call);
    void unregisterAgent(const QDBusMessage &call);
    void getProperties(const QDBusMessage &call);
    void setTechnologyProperty(const QDBusMessage &call);
    void scan(const QDBusMessage &call);
    void setServiceProperty(const QDBusMessage &call);
    void connectService(const QDBusMessage &call);
    void disconnectService(const QDBusMessage &call);
    void removeService(const QDBusMessage &call);

    Agents m_agents;
    ListedObjects m_technologies;
    ListedObjects m_services;
    QSet<QString> m_announced;
    Still m_still{*this};
    Behaviour *m_behaviour = &m_still;
    bool m_asyncScan = false;
};

#endif
