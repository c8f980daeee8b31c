#ifndef WIFITEST_H
#define WIFITEST_H

#include "networktest.h"

/** Base of the tests of the Wi-Fi station that join the network "Lab". */
class WifiTest : public NetworkTest
{
    Q_OBJECT

protected:
    /** Joins a network as a client does, as the user "me" with the passphrase "secret". */
    QString join(const QString &name = QStringLiteral("Lab"));

    /**
     * Calls passModuleDelay(), and waits until the daemon has handled the end of this delay for
     * every station script.
     */
    void letModuleSwitch();

    /** Starts a scan and waits until the module is switched. */
    void scan();

    /**
     * Starts the daemon and joins "Lab" until the state is "association", "configuration" or
     * "online"; discards the calls and signals so far.
     */
    void reach(const QString &name);

    /** Sets the state of the service of "Lab", and announces that the services changed. */
    void announceService(const QString &serviceState);

    const QString lab = networkPath(QStringLiteral("Lab"));
    const QVariantMap address = {{QStringLiteral("Method"), QStringLiteral("dhcp")},
                                 {QStringLiteral("Address"), QStringLiteral("10.0.0.7")}};

    // The announcements of states, with their service.
    const QString association = state("WIFI", QString(), "association");
    const QString configuration = state("WIFI", lab, "configuration");
    const QString online = state("WIFI", lab, "online");
    const QString failure = state("WIFI", QString(), "failure");
    const QString labFailure = state("WIFI", lab, "failure");

    // Calls as in ConnMan's journal.
    const QString getServices = QStringLiteral("Manager.GetServices / ()");
    const QString getTechnologies = QStringLiteral("Manager.GetTechnologies / ()");
    const QString powerOn = technology("SetProperty", "\"Powered\", <true>");
    const QString powerOff = technology("SetProperty", "\"Powered\", <false>");
    const QString asyncScan = technology("AsyncScan", "");
    const QString registerAgent = agent("RegisterAgent");
    const QString unregisterAgent = agent("UnregisterAgent");
    const QString connectLab = service("Connect", "");
    const QString removeLab = service("Remove", "");
    const QString nameservers = service("SetProperty", "\"Nameservers.Configuration\", <[]>");
    const QString settings = service("SetProperty", "\"IPv4.Configuration\", <{}>");

    const QString cannotSwitch = failed(QStringLiteral("Cannot switch in mode '1' (WLAN STATION)"));

private:
    static QString technology(const char *method, const char *values);
    static QString agent(const char *method);
    static QString service(const char *method, const char *values);
};

#endif
