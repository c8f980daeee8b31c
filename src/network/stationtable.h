#ifndef STATIONTABLE_H
#define STATIONTABLE_H

#include "linkmachine.h"

#include <QString>

/** The state table of the Wi-Fi station. */
extern const LinkTable stationTable;

/**
 * Returns the event for @p serviceState, ConnMan's state of the requested network's service.
 */
LinkEvent requestedEvent(const QString &serviceState);

/**
 * Returns true if @p errorName, the D-Bus error of ConnMan's reply to Connect, means that the
 * attempt has failed. @p errorName is empty if the reply is not an error.
 *
 * Returns true for each of ConnMan's own errors ("net.connman.Error.") except "InProgress" and
 * "AlreadyConnected". Returns false for every other error, for example a timeout of the call: the
 * attempt may still succeed.
 */
bool failsConnect(const QString &errorName);

#endif
