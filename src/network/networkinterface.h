#ifndef NETWORKINTERFACE_H
#define NETWORKINTERFACE_H

#include <QNetworkInterface>
#include <QString>

#include <optional>

/** Returns the network interface with exactly this name; an invalid one if there is none. */
QNetworkInterface findNetworkInterface(const QString &name);

/**
 * Returns true if the interface is administratively up, with or without carrier; false for an
 * invalid one.
 *
 * Replaces QNetworkInterface::IsUp, which also requires a carrier in some versions of Qt, such as
 * 5.15.
 */
bool isUp(const QNetworkInterface &interface);

/** Returns true if the interface is up and has carrier; false for an invalid one. */
bool isRunning(const QNetworkInterface &interface);

/** Returns the MTU of the interface in bytes; nothing if the kernel reports none. */
std::optional<ushort> maximumTransmissionUnit(const QNetworkInterface &interface);

#endif
