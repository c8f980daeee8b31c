#ifndef MODESCRIPT_H
#define MODESCRIPT_H

#include <QStringList>

/**
 * The mode-switch script of the Wi-Fi module, as the simulated module's package installs it, with
 * the templates of the access point.
 *
 * Mode "2" makes the interface "wifi_ap" and starts hostapd and dhcpd; every other mode takes them
 * away.
 */
class ModeScript
{
public:
    ModeScript() = default;
    ~ModeScript();
    Q_DISABLE_COPY(ModeScript)

    /** Installs script and templates afresh, with nothing told and an empty log. */
    void install();

    /** Takes the script away, leaving the templates. */
    void remove();

    /** Ends scripts that still run and what they started, and takes everything away. */
    void clear();

    /** What scripts did since install(), in order: "start 0", "end 0". */
    QStringList log();

    /** Waits until the log holds @p line @p count times. */
    bool waitFor(const QString &line, int count = 1);

    /** The scripts started from now on take that much longer. */
    void setDelay(double seconds);

    /** The scripts started from now on end with this status and switch nothing. */
    void setFailure(int status);

    /** The scripts started from now on wait after "start". */
    void hold();

    /** The scripts started from now on do not wait, but those that wait do until release(). */
    void letOthersPass();

    /** Lets one waiting script go on, and those to come not wait; waits for that one. */
    void release();

    /** Leaves "interface", "carrier", "hostapd" or "dhcpd" out of the next access point. */
    void leaveOut(const QString &part);

    /** Takes the carrier of the access point's interface away, or gives it back. */
    void setCarrier(bool present);

    /** Takes the access point's interface away. */
    void removeInterface();
};

#endif
