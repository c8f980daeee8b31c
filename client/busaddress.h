#ifndef BUSADDRESS_H
#define BUSADDRESS_H

#include <QString>

/**
 * Returns the D-Bus address of the system bus of @p host, as systemd's tools reach it: ssh runs
 * systemd-stdio-bridge there, whose standard input and output are the connection.
 *
 * @param host HOST or USER@HOST, as for ssh; never taken as an option
 */
QString addressOfHost(const QString &host);

/** Returns true if @p host can be given to ssh: not empty, no blank, no control character. */
bool isHostName(const QString &host);

#endif
