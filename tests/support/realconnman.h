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
     * Creates the network with the cable plugged in, deletes ConnMan's state of earlier runs, and
     * starts connmand. Returns when ConnMan has connected by itself, as it does by default.
     */
    void start();

    /** Starts connmand again with its old state; returns when it is on the bus. */
    void restart();

    /** Stops it as a shutdown does, or kills it; waits until its name has left the bus. */
    void stop();
    void kill();

    /** Suspends it (SIGSTOP), or resumes it. */
    void freeze();
    void thaw();

    void plugCable();
    void unplugCable();

    /** Sets whether the DHCP server ignores all requests. */
    void setDhcpServerMute(bool mute);

    /** ConnMan's properties of a technology or a service; empty if there is no such object. */
    static QVariantMap properties(const QString &path);

    /** A property of the wired technology or service from ConnMan; invalid if it does not exist. */
    static QVariant technology(const QString &name);
    static QVariant service(const QString &name);

private:
    void waitForEnd();

    QProcess m_process;
};

#endif
