#ifndef WIFISERVICES_H
#define WIFISERVICES_H

#include "connman.h"
#include "linkmachine.h"

#include <optional>

/** Returns the Wi-Fi networks among ConnMan's @p services, in ConnMan's order. */
QList<ConnmanObject> wifiServices(const QList<ConnmanObject> &services);

/**
 * Returns the first of @p services with the name @p name; nothing if there is none. A hidden
 * network has no property "Name" and is never returned.
 */
std::optional<ConnmanObject> wifiServiceNamed(const QList<ConnmanObject> &services,
                                              const QString &name);

/**
 * Returns the result of a scan, for clients. Each key is the name of a network, and its value is a
 * list of three texts: the object path, the strength in decimal (0 to 100), and all kinds of
 * security in one text, joined by commas.
 *
 * Hidden networks are left out. Of several networks with the same name the list contains only the
 * first one, which a connect would join.
 */
QVariantMap wifiScanList(const QList<ConnmanObject> &services);

/**
 * Converts @p value, the "Strength" of a ConnMan service, to a form that can be sent to clients.
 * Returns nothing if Qt cannot convert the type of @p value to a number.
 */
std::optional<QVariant> strengthOf(const QVariant &value);

/** A change of the station's current service. */
struct WifiServiceChange {
    /** One of ServiceStrength, ServiceError, ServiceAddress and ServiceOther. */
    LinkEvent event;
    /** For ServiceStrength: the new strength, in a form that can be sent to clients. */
    QVariant value;
};

/** Interprets the new @p value of the current service's property @p name. */
WifiServiceChange wifiServiceChange(const QString &name, const QVariant &value);

#endif
