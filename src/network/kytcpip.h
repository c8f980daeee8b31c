#ifndef KYTCPIP_H
#define KYTCPIP_H

#include "linkparts.h"

#include <QDBusAbstractAdaptor>
#include <QDBusVariant>
#include <QVariantMap>

class QDBusMessage;

/**
 * What the adaptors of the network interfaces share: the announcements, the IPv4 settings for the
 * next connection and the hardware information.
 *
 * Its methods and its signal belong to the D-Bus interface of each subclass.
 */
class KyTcpIp : public QDBusAbstractAdaptor
{
    Q_OBJECT

public:
    /**
     * @param technology ConnMan's name of the technology, as in "ethernet"
     * @param interfaceName the kernel's name of the network interface, as in "eth0"
     * @param servicePath what stands for a service where ConnMan has none
     */
    KyTcpIp(const QString &technology, const QString &interfaceName, QObject *parent,
            const QString &servicePath = QString());

public Q_SLOTS:
    /**
     * Keeps IPv4 settings for the next connection; see Ipv4Settings::take().
     *
     * Fails with "Cannot get property Connected", and keeps nothing, when ConnMan does not know
     * the technology.
     */
    void setIPv4(const QVariantMap &settings, const QDBusMessage &message);

    /** The "IPv4" property of the current ConnMan service; empty without one. */
    QVariantMap getIPv4();

    /**
     * The "Ethernet" property of the current ConnMan service; without a service the same keys
     * filled from the network interface: "Method" (empty), "Interface", "Address" and "MTU". Empty
     * when there is no such network interface.
     */
    QVariantMap getHardwareInfos();

Q_SIGNALS:
    /** The link state ("State", one of tpc_i_tcpIpState) or a property of the service changed. */
    void propertyChanged(const QString &objectPath, const QString &name, const QDBusVariant &value);

protected:
    LinkParts m_parts;
};

#endif
