#ifndef SIMULATEDMODESCRIPT_H
#define SIMULATEDMODESCRIPT_H

#include <QStringList>

/**
 * The mode script of the Wi-Fi module, as the simulated module installs it, with the templates of
 * the access point.
 *
 * Mode "2" creates the interface "wifi_ap" and starts hostapd and dhcpd; every other mode removes
 * them.
 */
class SimulatedModeScript
{
public:
    SimulatedModeScript() = default;
    ~SimulatedModeScript();
    Q_DISABLE_COPY(SimulatedModeScript)

    /** Calls clear(), then installs script and templates. */
    void install();

    /** Removes the script, keeps the templates. */
    void remove();

    /** Ends running scripts and their children, and removes everything. */
    void clear();

    /** The log of the scripts since install(), in order: "start 0", "end 0". */
    QStringList log();

    /** Waits until the log has @p line @p count times. */
    bool waitFor(const QString &line, int count = 1);

    /** Scripts that start from now on take @p seconds longer. */
    void setDelay(double seconds);

    /** Scripts that start from now on exit with this status and switch nothing. */
    void setFailure(int status);

    /** Scripts that start from now on wait after "start". */
    void hold();

    /** Waits until a script waits. Scripts that start from then on do not wait. */
    void letOthersPass();

    /** Waits until a script waits, and releases it. Later scripts do not wait. */
    void release();

    /** Leaves "interface", "carrier", "hostapd" or "dhcpd" out of the next access point. */
    void leaveOut(const QString &part);

    /** Removes or restores the carrier of the access point's interface. */
    void setCarrier(bool present);

    /** Removes the access point's interface. */
    void removeInterface();

private:
    /** The writing end of the FIFO from which a script waits to read, or -1. */
    int m_fifo = -1;
};

#endif
