#ifndef SOFTWAREVERSION_H
#define SOFTWAREVERSION_H

#include <QByteArray>

/*
 * The versions of the software around the daemon. A text that would not fit into a message of the
 * bus (more than 8 MiB) is no version.
 */

/**
 * Reads the version of the board support package: the first line of "/etc/sw_version" without the
 * white space around it.
 *
 * @return false, and @p version as it was, when the file cannot be opened
 */
bool readBspVersion(QByteArray &version);

/**
 * Asks the instrument's application, "/opt/KyApp", for its version: its standard output without
 * the white space around it. Waits for at most 3000 ms; a program that has not ended by then is
 * killed.
 *
 * @return false, and @p version as it was, when the program cannot be started, does not end in
 *         time, ends abnormally or has an exit code other than 0
 */
bool askApplicationVersion(QByteArray &version);

#endif
