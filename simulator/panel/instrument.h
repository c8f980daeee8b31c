#ifndef INSTRUMENT_H
#define INSTRUMENT_H

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

/** An access point in the air, as its files tell. */
struct AirPoint {
    QString directory;
    QString ssid;
    int signal = -60;
    bool isInRange = true;
    bool isHidden = false;
    bool isProtected = false;
};

/** One of the daemon's network interfaces, as the daemon announces it. */
struct Link {
    /** The last state; empty until one was announced. */
    QString state;
    /** The states on the way there, the last one last. */
    QStringList trail;
    QString address;
};

/** Everything that the panel shows. */
struct Instrument {
    /** The files of the board by their names, as in "als/lux"; what is not there is missing. */
    QMap<QString, QByteArray> board;
    /** How long ago the watchdog was fed, in milliseconds; negative: not known to have been. */
    qint64 fedBefore = -1;

    /** How many times faster than the machine's the instrument's time passes. */
    int speed = 1;

    /** What surrounds the daemon; 1 and 0, or -1 where it cannot be told. */
    int isCableIn = -1;
    int isDhcpMute = -1;
    int isWifiDhcpMute = -1;
    QVector<AirPoint> air;

    /** What the daemon says. */
    bool isBusThere = false;
    bool isDaemonThere = false;
    QString profile;
    bool isChangingProfile = false;
    QString batteryStatus;
    /** By interface: "Ethernet", "WIFI", "WIFIAP". */
    QMap<QString, Link> links;
    /** Of the current Wi-Fi network, 0 to 100; negative: none. */
    int strength = -1;
    /** The network that the station was connected to by its own announcement; empty: none. */
    QString joinedService;

    /** The last command that a hand on the panel ran, and how it failed; empty: it did not. */
    QString command;
    QString complaint;
};

#endif
