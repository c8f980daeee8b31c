#ifndef BUSADDRESS_H
#define BUSADDRESS_H

#include <QString>

/**
 * Returns the D-Bus address of the system bus of @p host. As in systemd's own tools, ssh runs
 * systemd-stdio-bridge on that machine, whose stdin and stdout carry the messages.
 *
 * @param host HOST or USER@HOST, as for ssh; ssh never parses @p host as an option
 */
QString addressOfHost(const QString &host);

/**
 * Returns true if ssh accepts @p host: printable ASCII without a blank, not empty, and without a
 * leading dash.
 */
bool isHostName(const QString &host);

#endif
