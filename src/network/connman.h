#ifndef CONNMAN_H
#define CONNMAN_H

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QList>
#include <QMap>
#include <QMetaType>
#include <QString>
#include <QVariant>

#include <optional>

class QObject;

/** A service or technology as ConnMan lists it. On the bus: (oa{sv}). */
struct ConnmanObject {
    QDBusObjectPath path;
    QVariantMap properties;
};

QDBusArgument &operator<<(QDBusArgument &argument, const ConnmanObject &object);

/** Reads @p object; the values of its properties stay as Qt D-Bus delivers them. */
const QDBusArgument &operator>>(const QDBusArgument &argument, ConnmanObject &object);

/** The properties of each interface of an object, by the interface's name. On the bus: a{sa{sv}} */
using InterfaceList = QMap<QString, QVariantMap>;

/** The interfaces of each object, by the object's path. On the bus: a{oa{sa{sv}}} */
using ManagedObjectList = QMap<QDBusObjectPath, InterfaceList>;

Q_DECLARE_METATYPE(ConnmanObject)
Q_DECLARE_METATYPE(InterfaceList)
Q_DECLARE_METATYPE(ManagedObjectList)

/**
 * ConnMan, the network manager on the system bus. No other file calls ConnMan.
 *
 * Every call except connectService() blocks for at most Qt D-Bus's default timeout, and is not
 * retried.
 */
namespace connman
{
/** The bus name. */
extern const QString serviceName;

extern const QString managerPath;
extern const QString managerInterface;
extern const QString serviceInterface;
extern const QString technologyInterface;

/** The object path of @p technology, for example "ethernet". */
QString technologyPath(const QString &technology);

/**
 * Registers the types above with Qt D-Bus. Reading ConnMan's replies does not require this.
 */
void registerTypes();

/**
 * Returns the services in ConnMan's order, with their properties as plainValue() converts them.
 *
 * Empty if ConnMan is not on the bus, replies with an error, or replies with anything but a list of
 * objects.
 */
QList<ConnmanObject> services();

/** Returns the technologies in the same way. */
QList<ConnmanObject> technologies();

/**
 * Calls @p slot, which takes a QString and a QDBusVariant, for every "PropertyChanged" of the
 * object at @p path. A signal of that name with other arguments is not delivered.
 */
void watchProperties(const QString &path, const QString &interface, QObject *receiver,
                     const char *slot);

/** Ends watchProperties(). */
void unwatchProperties(const QString &path, const QString &interface, QObject *receiver,
                       const char *slot);

/**
 * Returns the first of @p objects whose property @p name has the value @p value; nothing if there
 * is none.
 */
std::optional<ConnmanObject> findObject(const QList<ConnmanObject> &objects, const QString &name,
                                        const QString &value);

/** Returns true if @p value is a boolean and equals @p flag. */
bool isFlag(const QVariant &value, bool flag);

/** Switches a technology on or off. @return ConnMan's error, an invalid one on success */
QDBusError setTechnologyPowered(const QString &technology, bool powered);

/** Sets a property of the service at @p path. @return ConnMan's error, an invalid one on success */
QDBusError setServiceProperty(const QString &path, const QString &name, const QVariant &value);

/**
 * Calls Connect on the service at @p path; the only call that does not block.
 *
 * ConnMan replies when the connection is up or has failed, and only after the agent has answered.
 */
QDBusPendingCall connectService(const QString &path);

/**
 * Makes ConnMan forget the service at @p path. @return ConnMan's error, an invalid one on success
 */
QDBusError remove(const QString &path);

/** Requests a scan; ConnMan announces the result with its signal ServicesChanged. */
void scan(const QString &technology);

/**
 * Registers the object at @p path of this process as ConnMan's agent, which provides the
 * credentials.
 */
void registerAgent(const QString &path);

/** Ends registerAgent(). */
void unregisterAgent(const QString &path);
} // namespace connman

#endif
