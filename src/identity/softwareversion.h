#ifndef SOFTWAREVERSION_H
#define SOFTWAREVERSION_H

#include <QByteArray>

#include <optional>

/*
 * The versions of the software around the daemon. A text that would not fit into a message of the
 * bus (more than 8 MiB) is no version.
 */

/**
 * The version of the board support package: the first line of "/etc/sw_version" without the white
 * space around it. Nothing when the file cannot be opened.
 */
std::optional<QByteArray> readBspVersion();

/**
 * Asks the instrument's application, "/opt/KyApp", for its version: its standard output without
 * the white space around it. Waits for at most 3000 ms; a program that has not ended by then is
 * killed.
 *
 * @return nothing when the program cannot be started, does not end in time, ends abnormally or has
 *         an exit code other than 0
 */
std::optional<QByteArray> askApplicationVersion();

#endif
