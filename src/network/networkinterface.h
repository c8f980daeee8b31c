#ifndef NETWORKINTERFACE_H
#define NETWORKINTERFACE_H

#include <QNetworkInterface>
#include <QString>

/** The network interface of the system with exactly this name; an invalid one where none has. */
QNetworkInterface findNetworkInterface(const QString &name);

/**
 * Whether the interface is switched on, with or without carrier; false for an invalid one.
 *
 * Newer versions of the network library say so only of an interface that has carrier.
 */
bool isUp(const QNetworkInterface &interface);

/** Whether the interface is switched on and has carrier; false for an invalid one. */
bool isRunning(const QNetworkInterface &interface);

/** The greatest number of bytes that the interface sends at once; 0 where the kernel says none. */
ushort maximumTransmissionUnit(const QNetworkInterface &interface);

#endif
