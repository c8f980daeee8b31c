#ifndef KYTCPIP_H
#define KYTCPIP_H

#include "tcpipstate.h"

#include <QDBusAbstractAdaptor>
#include <QDBusError>
#include <QDBusVariant>
#include <QProcess>
#include <QStringList>
#include <QVariant>

class QDBusMessage;

/**
 * What the adaptors of the network interfaces share: the link state and its announcement, the IPv4
 * settings for the next connection, the hardware information, the power of ConnMan's technology
 * and the mode of the Wi-Fi module.
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
     */
    KyTcpIp(const QString &technology, const QString &interfaceName, QObject *parent);

public Q_SLOTS:
    /**
     * Keeps IPv4 settings for the next connection.
     *
     * "Method", "Address", "Netmask" and "Gateway" replace what was kept, "DNS1" and "DNS2" are
     * added to the name servers. With the method "manual", addresses that are missing or invalid
     * are made up (see repairedIPv4()).
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
    /** Answers @p message with the bus's standard error for what failed, as all of these do. */
    static void sendFailure(const QString &text, const QDBusMessage &message);

    /** Whether the state is "idle" or "failure". */
    bool acceptsConnect() const;

    /** Enters a KyTcpIpState::State and announces it. */
    void setState(int state);

    /** Switches the technology on or off. @return ConnMan's error, an invalid one on success */
    QDBusError setTechnologyPowered(bool powered);

    /**
     * Switches the technology on.
     *
     * @return whether it is on already: ConnMan will not announce "Powered", and the caller does at
     *         once what it would have done then. False on success and after every other error.
     */
    bool powerOn();

    /** Makes the ConnMan service at @p path the current one and listens to its changes. */
    void watchService(const QString &path);

    /** Ends watchService(): there is no current service. */
    void forgetService();

    /**
     * Hands the kept name servers and IPv4 settings to the current service.
     *
     * @return ConnMan's error about the IPv4 settings, an invalid one when it takes them
     */
    QDBusError applyIPv4();

    /**
     * Starts the script that switches the Wi-Fi module's mode; slotLoadFirmwareFinished() is
     * called when it ends.
     *
     * @param mode "0" Ethernet alone, "1" Wi-Fi station, "2" access point
     * @return 0, or -1 when the script still runs or has not started within 1000 ms
     */
    int switchMode(const QString &mode);

    /** Calls slotLoadFirmwareFinished() no more until the next switchMode(). */
    void forgetScript();

    /** The properties of the current service; empty where ConnMan lists no such service. */
    QVariantMap serviceProperties() const;

    /** Object path of the ConnMan service in use; empty until there is one. */
    QString m_servicePath;
    const QString m_technology;
    const QString m_interfaceName;
    int m_state = KyTcpIpState::Idle;
    QVariantMap m_ipv4Configuration;
    QStringList m_nameservers;
    QProcess m_process;
    /** Cleared when the script is started; the rest is up to the subclass. */
    int m_firmwareLoaded = 0;

protected Q_SLOTS:
    /** The mode-switch script has ended. */
    virtual void slotLoadFirmwareFinished(int exitCode, QProcess::ExitStatus exitStatus) = 0;

    /**
     * A property of the current service changed.
     *
     * Here: while "ready", a change of "IPv4" is announced, after the state "online" where it
     * brings an address and a netmask.
     */
    virtual void servicePropertyChangedSlot(const QString &name, const QDBusVariant &value);
};

#endif
