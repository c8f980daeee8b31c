#ifndef ACCESSPOINT_H
#define ACCESSPOINT_H

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QVariantMap>

/** A simulated access point. */
struct AccessPoint {
    QByteArray ssid;
    /** The signal strength in dBm. */
    short signal = -60;
    /** WPA2 with a passphrase; otherwise open. */
    bool isProtected = false;
    QByteArray passphrase;
    /** Does not send its name unless a station asks for that name. */
    bool isHidden = false;
    bool isInRange = true;
    /** Rejects every passphrase, even its own. */
    bool refuses = false;
    /** Visible, but answers no station. */
    bool isMute = false;
};

/** Access points by the names of their directories. */
using AccessPoints = QMap<QString, AccessPoint>;

/**
 * Returns the access point that the files in its directory describe. @p files maps the names of the
 * files to their content.
 *
 * If a file is missing, invalid, or empty (as during a write), the property keeps its value in @p
 * before.
 */
AccessPoint accessPointFrom(const QMap<QString, QByteArray> &files, const AccessPoint &before);

/**
 * Returns the properties of @p accessPoint on wpa_supplicant's interface BSS. The SSID is empty if
 * @p isNamed is false. The hardware address depends on @p directory only.
 */
QVariantMap bssProperties(const QString &directory, const AccessPoint &accessPoint, bool isNamed);

#endif
