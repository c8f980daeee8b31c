#ifndef KYTCPIP_H
#define KYTCPIP_H

#include "linkparts.h"

#include <QDBusAbstractAdaptor>
#include <QDBusVariant>
#include <QVariantMap>

class QDBusMessage;

/**
 * The base class of the network adaptors: announces changes, stores IPv4 settings for the next
 * connection and reports hardware information.
 *
 * Its methods and its signal belong to the D-Bus interface of each subclass.
 */
class KyTcpIp : public QDBusAbstractAdaptor
{
    Q_OBJECT

public:
    /**
     * @param technology ConnMan's name of the technology, for example "ethernet"
     * @param interfaceName the kernel's name of the network interface, for example "eth0"
     * @param servicePath the object path that propertyChanged() announces for an interface that
     *         never has a ConnMan service
     */
    KyTcpIp(const QString &technology, const QString &interfaceName, QObject *parent,
            const QString &servicePath = QString());

public Q_SLOTS:
    /**
     * Stores IPv4 settings for the next connection; see Ipv4Settings::take().
     *
     * Fails with "Cannot get property Connected", and stores nothing, if ConnMan does not report
     * this property of the technology.
     */
    void setIPv4(const QVariantMap &settings, const QDBusMessage &message);

    /** Returns the "IPv4" property of the current ConnMan service; empty without a service. */
    QVariantMap getIPv4();

    /**
     * Returns the "Ethernet" property of the current ConnMan service. Without a service, returns
     * the same keys with values from the network interface: "Method" (empty), "Interface",
     * "Address" and "MTU". Empty if there is no such network interface.
     */
    QVariantMap getHardwareInfos();

Q_SIGNALS:
    /** The link state ("State", one of tpc_i_tcpIpState) or a property of the service changed. */
    void propertyChanged(const QString &objectPath, const QString &name, const QDBusVariant &value);

protected:
    LinkParts m_parts;
};

#endif
