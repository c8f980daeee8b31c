#ifndef WIFISERVICES_H
#define WIFISERVICES_H

#include "connman.h"
#include "linkmachine.h"

/** Those of ConnMan's @p services that are Wi-Fi networks, in ConnMan's order. */
QList<ConnmanObject> wifiServices(const QList<ConnmanObject> &services);

/**
 * The first of @p services that bears the name @p name; one without path where none does. A
 * network without a name (a hidden one) is not the one named "".
 */
ConnmanObject wifiServiceNamed(const QList<ConnmanObject> &services, const QString &name);

/**
 * The outcome of a scan, for clients: by the network's name, a string list of its object path, its
 * strength in decimal (0 to 100) and its kinds of security, joined by commas.
 *
 * Hidden networks are left out. Of networks of one name only the first is in it, which is the one
 * that would be joined.
 */
QVariantMap wifiScanList(const QList<ConnmanObject> &services);

/** ConnMan's number for a service's strength, as it can be sent on; invalid for anything else. */
QVariant strengthOf(const QVariant &value);

/** A change of the station's current service. */
struct WifiServiceChange {
    /** One of ServiceStrength, ServiceError, ServiceAddress and ServiceOther. */
    LinkEvent event;
    /** The value as it can be sent on, where that is its due. */
    QVariant value;
};

/** What it means that the current service's property @p name is @p value now. */
WifiServiceChange wifiServiceChange(const QString &name, const QVariant &value);

#endif
