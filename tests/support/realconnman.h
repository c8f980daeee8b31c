#ifndef REALCONNMAN_H
#define REALCONNMAN_H

#include <QProcess>
#include <QString>
#include <QVariant>

/**
 * The real ConnMan, with the interface "eth0" whose cable leads to a DHCP server.
 *
 * Leases are of 10.77.0.50 to 10.77.0.99, netmask 255.255.255.0, gateway and name server 10.77.0.1.
 */
class RealConnman
{
public:
    static const QString technologyPath;
    static const QString servicePath;

    ~RealConnman();

    /**
     * Makes the network afresh, with the cable in and nothing remembered of earlier runs, and
     * starts connmand; returns when it has connected by itself, as it does where it was never told
     * otherwise.
     */
    void start();

    /** Starts connmand again, as it was left; returns when it is on the bus. */
    void restart();

    /** Ends it as at shutdown, or at once; waits until its name is gone from the bus. */
    void stop();
    void kill();

    /** Suspends it (SIGSTOP), from when on it answers nothing, and lets it go on. */
    void freeze();
    void thaw();

    void plugCable();
    void unplugCable();

    /** Whether the DHCP server answers anybody. */
    void setDhcpServerMute(bool mute);

    /** What ConnMan says of a technology or a service; empty where there is no such object. */
    static QVariantMap properties(const QString &path);

    /** A property of the wired ones as ConnMan gives it; invalid where there is no such object or
     * property. */
    static QVariant technology(const QString &name);
    static QVariant service(const QString &name);

private:
    void waitForEnd();

    QProcess m_process;
};

#endif
