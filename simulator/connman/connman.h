#ifndef CONNMAN_H
#define CONNMAN_H

#include "agents.h"
#include "listedobject.h"

#include <QDBusMessage>
#include <QObject>
#include <QSet>

class Lively;

/**
 * What ConnMan keeps and does: its technologies, services and agents, and the methods of the
 * manager, of a technology and of a service.
 *
 * Calls change what is kept and answer as ConnMan does. Signals are sent, and anything else
 * happens, only when somebody who drives the stand-in asks for it; or as Lively has it.
 */
class Connman : public QObject
{
    Q_OBJECT

public:
    explicit Connman(QObject *parent);

    /** Does what @p call asks for and answers it, now or, for Connect, after the agent has. */
    void serve(const QDBusMessage &call);

    void setTechnologies(const ListedObjects &technologies);
    void setServices(const ListedObjects &services);

    /** Who does what follows from the calls; null where nothing does. */
    void setLively(Lively *lively);

    void addService(const ListedObject &service);
    void dropService(const QString &path);

    /** Whether technologies have the method AsyncScan, which not every ConnMan has. */
    void setAsyncScan(bool exists);

    /**
     * Sets a property of a service or a technology, adding it where it is not there.
     *
     * @return false without an object of that path
     */
    bool storeProperty(const QString &path, const QString &name, const QVariant &value);

    /** A property of a service or a technology; invalid where there is none. */
    QVariant property(const QString &path, const QString &name) const;

    /** Sends PropertyChanged of the service or the technology; false without such an object. */
    bool announceProperty(const QString &path, const QString &name);

    /**
     * Sends ServicesChanged with the whole list: the properties of those services that no earlier
     * one held, none for the others, and the paths of those that are gone.
     */
    void announceServices();

    /** Whether clients know the object; of a service they know when a list has been announced. */
    bool isAnnounced(const QString &path) const;

    /** Sends PropertyChanged of the manager's state. */
    void announceState();

    /** Connect of this service asks the caller's agent for @p fields before it answers. */
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
    QMap<QString, QVariantMap> m_questions;
    Lively *m_lively = nullptr;
    bool m_asyncScan = false;
};

#endif
