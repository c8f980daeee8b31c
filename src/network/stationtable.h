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
 * Returns true if the D-Bus error @p errorName, ConnMan's reply to Connect, fails the attempt
 * (empty: no error).
 *
 * Only ConnMan's own errors do, except those for a connection that exists or is in progress. A
 * timeout of the call decides nothing.
 */
bool failsConnect(const QString &errorName);

#endif
