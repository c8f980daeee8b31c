#ifndef INSTRUMENT_H
#define INSTRUMENT_H

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

/** An access point in the air, from its files. */
struct AirPoint {
    QString directory;
    QString ssid;
    int signal = -60;
    bool isInRange = true;
    bool isHidden = false;
    bool isProtected = false;
};

/** One of the daemon's network interfaces, from its announcements. */
struct Link {
    /** The last state; empty until one was announced. */
    QString state;
    /** The last states, at most five, the latest one at the end. */
    QStringList trail;
    QString address;
};

/** Everything that the panel shows. */
struct Instrument {
    /** The board's files by their names, for example "als/lux"; missing files are not included. */
    QMap<QString, QByteArray> board;
    /** Milliseconds since the watchdog was last fed; negative if it was never fed. */
    qint64 fedBefore = -1;

    /** How many times faster the instrument's time passes. */
    int speed = 1;

    /** The surroundings of the daemon: 1, 0, or -1 if unknown. */
    int isCableIn = -1;
    int isDhcpMute = -1;
    int isWifiDhcpMute = -1;
    QVector<AirPoint> air;

    /** The state that the daemon reports. */
    bool isBusThere = false;
    bool isDaemonThere = false;
    QString profile;
    bool isChangingProfile = false;
    QString batteryStatus;
    /** The daemon's network interfaces by name: "Ethernet", "WIFI", "WIFIAP". */
    QMap<QString, Link> links;
    /** The strength of the current Wi-Fi network, 0 to 100; negative without a network. */
    int strength = -1;
    /** The network that the station announced as connected; empty without one. */
    QString joinedService;

    /** The last command from the panel and its failure; empty on success. */
    QString command;
    QString complaint;
};

#endif
