#ifndef BUSADDRESS_H
#define BUSADDRESS_H

#include <QString>

/**
 * The D-Bus address of the system bus of @p host, as systemd's tools reach it: ssh runs
 * systemd-stdio-bridge there, and its standard input and output are the connection.
 *
 * @param host as ssh takes it: HOST or USER@HOST, never as an option of ssh's
 */
QString addressOfHost(const QString &host);

/** Whether @p host can be given to ssh: no empty name, no blank, no control character. */
bool isHostName(const QString &host);

#endif
