#ifndef STATIONTABLE_H
#define STATIONTABLE_H

#include "linkmachine.h"

#include <QString>

/** The Wi-Fi station. */
extern const LinkTable stationTable;

/**
 * What it means for an attempt that ConnMan gives the requested network's service the state
 * @p serviceState.
 */
LinkEvent requestedEvent(const QString &serviceState);

/**
 * Whether the D-Bus error @p errorName, ConnMan's answer to Connect, fails the attempt (empty: no
 * error).
 *
 * Only an error of ConnMan's own does. A connection that stands or is under way already is no
 * failure, and neither is a reply that has not come in time.
 */
bool failsConnect(const QString &errorName);

#endif
