#ifndef SOFTWAREVERSION_H
#define SOFTWAREVERSION_H

#include <QByteArray>
#include <QVariantMap>

#include <optional>

/*
 * The versions of the software around the daemon. A version of more than 256 KiB is discarded: all
 * versions must fit into one message, even on a bus that limits messages to 1 MiB.
 */

/**
 * Returns the version of the board support package: the first line of "/etc/sw_version", trimmed.
 * Returns nothing if the file cannot be opened.
 */
std::optional<QByteArray> readBspVersion();

/**
 * Runs "/opt/KyApp -V" and returns its trimmed stdout: the version of the instrument's application.
 * Waits for at most 3000 ms, then kills the program.
 *
 * @return nothing if the program cannot be started, does not end in time, ends abnormally or has an
 *         exit code other than 0
 */
std::optional<QByteArray> askApplicationVersion();

/** Returns all versions by their names on the bus, without those that cannot be determined. */
QVariantMap readSoftwareVersions();

#endif
