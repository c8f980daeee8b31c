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

class QObject;

/** A service or technology as ConnMan lists it. On the bus: (oa{sv}). */
struct ConnmanObject {
    QDBusObjectPath path;
    QVariantMap properties;
};

QDBusArgument &operator<<(QDBusArgument &argument, const ConnmanObject &object);

/** Reads @p object; the values of its properties stay as Qt D-Bus gives them. */
const QDBusArgument &operator>>(const QDBusArgument &argument, ConnmanObject &object);

/** The properties of each interface of an object, by the interface's name. On the bus: a{sa{sv}} */
using InterfaceList = QMap<QString, QVariantMap>;

/** The interfaces of each object, by the object's path. On the bus: a{oa{sa{sv}}} */
using ManagedObjectList = QMap<QDBusObjectPath, InterfaceList>;

Q_DECLARE_METATYPE(ConnmanObject)
Q_DECLARE_METATYPE(InterfaceList)
Q_DECLARE_METATYPE(ManagedObjectList)

/**
 * The network manager on the system bus, and the only place that calls it.
 *
 * Every call but connectService() blocks for at most Qt D-Bus's default time-out, and each
 * is made once.
 */
namespace connman
{
/** The bus name. */
extern const QString serviceName;

extern const QString managerPath;
extern const QString managerInterface;
extern const QString serviceInterface;
extern const QString technologyInterface;

/** The object path of the technology @p technology, as in "ethernet". */
QString technologyPath(const QString &technology);

/** Makes the types above known to Qt D-Bus; to be done before a list is read. */
void registerTypes();

/**
 * The services, in ConnMan's order, their properties as plainValue() gives them.
 *
 * Empty when ConnMan is not on the bus, answers with an error or answers with anything else than
 * a list of objects.
 */
QList<ConnmanObject> services();

/** The technologies; otherwise as services(). */
QList<ConnmanObject> technologies();

/**
 * Calls @p slot, which takes a QString and a QDBusVariant, at every "PropertyChanged" of the object
 * at @p path. A signal of that name with other arguments is not delivered.
 */
void watchProperties(const QString &path, const QString &interface, QObject *receiver,
                     const char *slot);

/** Takes watchProperties() back. */
void unwatchProperties(const QString &path, const QString &interface, QObject *receiver,
                       const char *slot);

/** The first of @p objects whose property @p name is @p value; one without path where none is. */
ConnmanObject findObject(const QList<ConnmanObject> &objects, const QString &name,
                         const QString &value);

/** Whether @p value is @p flag; a value of another type is neither true nor false. */
bool isFlag(const QVariant &value, bool flag);

/** Switches a technology on or off. @return ConnMan's error, an invalid one on success */
QDBusError setTechnologyPowered(const QString &technology, bool powered);

/** Sets a property of the service at @p path. @return ConnMan's error, an invalid one on success */
QDBusError setServiceProperty(const QString &path, const QString &name, const QVariant &value);

/**
 * Asks for a connection to the service at @p path; the only call that does not block.
 *
 * ConnMan replies when the connection stands or has failed, and only after its agent has answered.
 */
QDBusPendingCall connectService(const QString &path);

/** Makes ConnMan forget the service at @p path. @return its error, an invalid one on success */
QDBusError remove(const QString &path);

/** Asks for a scan; ConnMan announces the outcome with its signal ServicesChanged. */
void scan(const QString &technology);

/** Names the object at @p path of this process to ConnMan as the one that knows credentials. */
void registerAgent(const QString &path);

/** Takes registerAgent() back. */
void unregisterAgent(const QString &path);
} // namespace connman

#endif
