#ifndef INSTRUMENT_H
#define INSTRUMENT_H

#include "battery.h"
#include "link.h"

#include <KyBoardManagerClient/boardmanageralimentation.h>
#include <KyBoardManagerClient/boardmanagerbacklight.h>
#include <KyBoardManagerClient/boardmanagerethernet.h>
#include <KyBoardManagerClient/boardmanagerstorage.h>
#include <KyBoardManagerClient/boardmanagerusers.h>
#include <KyBoardManagerClient/boardmanagerwifi.h>
#include <KyBoardManagerClient/boardmanagerwifiap.h>

#include <QDBusConnection>
#include <QTimer>

/**
 * The instrument for QML: the daemon's state as properties with change signals.
 *
 * Never blocks: every reply is handled asynchronously. The daemon may start later, end and restart.
 * While the daemon does not run, all values are unknown, and "available" is false.
 */
class Instrument : public QObject
{
    Q_OBJECT
    /** True while the daemon is on the system bus. */
    Q_PROPERTY(bool available READ isAvailable NOTIFY availableChanged)
    /** The reason why all values are unknown, for people; empty otherwise. */
    Q_PROPERTY(QString problem READ problem NOTIFY problemChanged)
    /** The active profile; empty if unknown. */
    Q_PROPERTY(QString profile READ profile NOTIFY profileChanged)
    /** The charge is at most this percentage, by the battery status; -1 if unknown. */
    Q_PROPERTY(int batteryLevel READ batteryLevel NOTIFY batteryChanged)
    Q_PROPERTY(bool chargerConnected READ isChargerConnected NOTIFY batteryChanged)
    /**
     * "mounted", "inserted", "none" or "unknown". A device that was already inserted when this
     * program or the daemon started, but is not mounted, counts as "none".
     */
    Q_PROPERTY(QString sdCard READ sdCard NOTIFY storageChanged)
    Q_PROPERTY(QString usbKey READ usbKey NOTIFY storageChanged)
    /** The backlight in percent; -1 if unknown, or on a model without a screen. */
    Q_PROPERTY(int backlight READ backlight NOTIFY backlightChanged)
    Q_PROPERTY(Link *ethernet READ ethernet CONSTANT)
    Q_PROPERTY(Link *wifi READ wifi CONSTANT)
    Q_PROPERTY(Link *accessPoint READ accessPoint CONSTANT)

public:
    /** Registers the types with QML, for "import Strandel 1.0". */
    static void registerTypes();

    explicit Instrument(QObject *parent = nullptr);

    bool isAvailable() const { return m_isAvailable; }
    QString problem() const { return m_problem; }
    QString profile() const { return m_profile; }
    int batteryLevel() const { return m_battery.level; }
    bool isChargerConnected() const { return m_battery.isChargerThere; }
    QString sdCard() const { return m_sdCard; }
    QString usbKey() const { return m_usbKey; }
    int backlight() const { return m_backlight; }
    Link *ethernet() { return &m_ethernet; }
    Link *wifi() { return &m_wifi; }
    Link *accessPoint() { return &m_accessPoint; }

Q_SIGNALS:
    void availableChanged();
    void problemChanged();
    void profileChanged();
    void batteryChanged();
    void storageChanged();
    void backlightChanged();

private:
    void followDaemon();
    void followLinks();
    void followDevices();

    void begin();
    void forget();
    void askAgain();
    void askForProfile();
    void askForAddress(Link &link);

    void setAvailable(bool isAvailable);
    void setProblem(const QString &problem);
    void setProfile(const QString &profile);
    void setBattery(const QString &status);
    void setBacklight(int percent);
    void setStorage(QString &storage, const QString &state);
    void takePresence(QString &storage, bool isPresent);
    void takeMounted(QString &storage, bool isMounted);

    /** Calls @p receive with the reply, of type Answer, when it arrives. */
    template <typename Answer, typename Receive>
    void whenAnswered(const QDBusPendingCall &call, Receive receive);

    QDBusConnection m_bus;
    BoardManagerAlimentation m_supplyFace;
    BoardManagerBacklight m_backlightFace;
    BoardManagerEthernet m_ethernetFace;
    BoardManagerStorage m_storageFace;
    BoardManagerUsers m_usersFace;
    BoardManagerWIFI m_wifiFace;
    BoardManagerWIFIAP m_accessPointFace;
    QTimer m_asking;

    bool m_isAvailable = false;
    QString m_problem;
    QString m_profile;
    Battery m_battery;
    QString m_sdCard;
    QString m_usbKey;
    int m_backlight = -1;
    Link m_ethernet;
    Link m_wifi;
    Link m_accessPoint;
};

#endif
