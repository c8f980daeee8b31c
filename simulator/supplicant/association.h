#ifndef ASSOCIATION_H
#define ASSOCIATION_H

#include "accesspoint.h"

#include <QStringList>

/**
 * Returns the access point that a station with these network settings chooses: the strongest one in
 * range with this name and security. Empty if there is none.
 */
QString chooseAccessPoint(const AccessPoints &air, const QVariantMap &network);

/**
 * Returns the supplicant's states of an association: up to "completed" or "disconnected", or only
 * "associating" if the access point is mute.
 */
QStringList associationSteps(const AccessPoints &air, const QString &chosen,
                             const QVariantMap &network);

#endif
