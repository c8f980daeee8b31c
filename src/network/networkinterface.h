#ifndef NETWORKINTERFACE_H
#define NETWORKINTERFACE_H

#include <QNetworkInterface>
#include <QString>

/** The network interface of the system with exactly this name; an invalid one where none has. */
QNetworkInterface findNetworkInterface(const QString &name);

/** The greatest number of bytes that the interface sends at once; 0 where the kernel says none. */
ushort maximumTransmissionUnit(const QNetworkInterface &interface);

#endif
