#ifndef LISTEDOBJECT_H
#define LISTEDOBJECT_H

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QList>
#include <QMetaType>
#include <QVariant>

/** A service or a technology as ConnMan lists it: (oa{sv}). */
struct ListedObject {
    QDBusObjectPath path;
    QVariantMap properties;
};

using ListedObjects = QList<ListedObject>;

QDBusArgument &operator<<(QDBusArgument &argument, const ListedObject &object);
const QDBusArgument &operator>>(const QDBusArgument &argument, ListedObject &object);

/**
 * Registers lists of ListedObject with Qt D-Bus. Call this function before sending or reading such
 * a list.
 */
void registerListedObjects();

Q_DECLARE_METATYPE(ListedObject)

#endif
