#include "listedobject.h"

#include <QDBusMetaType>

QDBusArgument &operator<<(QDBusArgument &argument, const ListedObject &object)
{
    argument.beginStructure();
    argument << object.path << object.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, ListedObject &object)
{
    argument.beginStructure();
    argument >> object.path >> object.properties;
    argument.endStructure();
    return argument;
}

void registerListedObjects()
{
    qDBusRegisterMetaType<ListedObject>();
    qDBusRegisterMetaType<ListedObjects>();
    qDBusRegisterMetaType<QList<QDBusObjectPath>>();
}
