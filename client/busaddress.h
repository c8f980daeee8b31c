#ifndef BUSADDRESS_H
#define BUSADDRESS_H

#include <QString>

/**
 * Returns the D-Bus address of the system bus of @p host. Messages go through ssh, which runs
 * systemd-stdio-bridge on that machine, as systemd's own tools do.
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
