#ifndef SOFTWAREVERSION_H
#define SOFTWAREVERSION_H

#include <QByteArray>
#include <QVariantMap>

#include <optional>

/*
 * The versions of the software around the daemon. A text of more than 256 KiB does not count: both
 * versions have to fit into one message of a bus that takes 1 MiB.
 */

/**
 * Returns the version of the board support package: the first line of "/etc/sw_version", trimmed.
 * Nothing if the file cannot be opened.
 */
std::optional<QByteArray> readBspVersion();

/**
 * Asks the instrument's application, "/opt/KyApp", for its version: its trimmed standard output.
 * Waits for at most 3000 ms, then kills the program.
 *
 * @return nothing if the program cannot be started, does not end in time, ends abnormally or has an
 *         exit code other than 0
 */
std::optional<QByteArray> askApplicationVersion();

/** Returns all versions by their names on the bus, without those that cannot be found out. */
QVariantMap readSoftwareVersions();

#endif
