#ifndef SERVICEPROPERTY_H
#define SERVICEPROPERTY_H

#include <QString>
#include <QVariant>

/** ConnMan's verdict on a new property value of a service. */
enum class PropertyVerdict { Accepted, InvalidProperty, InvalidArguments };

/**
 * Returns whether ConnMan accepts @p value for the service property @p name. Only settings can be
 * set, each with its own type; the IPv4 settings must name a method and, for "manual", valid
 * addresses.
 */
PropertyVerdict judgeServiceProperty(const QString &name, const QVariant &value);

#endif
