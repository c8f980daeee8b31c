#ifndef ASSOCIATION_H
#define ASSOCIATION_H

#include "accesspoint.h"

#include <QStringList>

/**
 * The access point that a station with these settings of a network chooses: the strongest in range
 * of this name and security. Empty where there is none.
 */
QString chooseAccessPoint(const AccessPoints &air, const QVariantMap &network);

/** The states that lead from there to the end, "completed" or "disconnected". */
QStringList associationSteps(const AccessPoints &air, const QString &chosen,
                             const QVariantMap &network);

#endif
