#ifndef ACCESSPOINT_H
#define ACCESSPOINT_H

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QVariantMap>

/** An access point in the air. */
struct AccessPoint {
    QByteArray ssid;
    /** In dBm. */
    short signal = -60;
    /** WPA2 with a passphrase; otherwise open. */
    bool isProtected = false;
    QByteArray passphrase;
    /** It does not tell its name unless asked for by it. */
    bool isHidden = false;
    bool isInRange = true;
    /** It accepts no passphrase, not even its own. */
    bool refuses = false;
    /** It is seen, and answers nobody who wants to join it. */
    bool isMute = false;
};

/** By name of their directories. */
using AccessPoints = QMap<QString, AccessPoint>;

/**
 * The access point that the files of a directory describe, by name of the file.
 *
 * A file that is missing, empty or nonsensical, as it is for a moment while it is written, leaves
 * what was known @p before.
 */
AccessPoint accessPointFrom(const QMap<QString, QByteArray> &files, const AccessPoint &before);

/** What the supplicant tells of it; without its name where @p isNamed is false. */
QVariantMap bssProperties(const QString &directory, const AccessPoint &accessPoint, bool isNamed);

#endif
