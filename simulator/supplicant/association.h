#ifndef ASSOCIATION_H
#define ASSOCIATION_H

#include "accesspoint.h"

#include <QStringList>

/**
 * Returns the directory name of the access point that a station chooses for @p network, the
 * settings of a wpa_supplicant network: the strongest access point in range with the network's SSID
 * and security. Returns an empty name if there is none.
 */
QString chooseAccessPoint(const AccessPoints &air, const QVariantMap &network);

/**
 * Returns the supplicant's states of an association: up to "completed" or "disconnected", or only
 * "associating" if the access point is mute.
 */
QStringList associationSteps(const AccessPoints &air, const QString &chosen,
                             const QVariantMap &network);

#endif
