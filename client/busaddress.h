#ifndef BUSADDRESS_H
#define BUSADDRESS_H

#include <QString>

/**
 * Returns the D-Bus address of the system bus of @p host. ssh runs systemd-stdio-bridge on that
 * machine and connects the program's stdin and stdout, like systemd's own tools.
 *
 * @param host HOST or USER@HOST, as for ssh, which never parses it as an option
 */
QString addressOfHost(const QString &host);

/**
 * Returns true if ssh accepts @p host: printable ASCII without a blank, not empty, and without a
 * leading dash.
 */
bool isHostName(const QString &host);

#endif
