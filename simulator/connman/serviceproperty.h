#ifndef SERVICEPROPERTY_H
#define SERVICEPROPERTY_H

#include <QString>
#include <QVariant>

/** How ConnMan judges a property that a client wants to give a service. */
enum class PropertyVerdict { Accepted, InvalidProperty, InvalidArguments };

/**
 * Whether ConnMan takes @p value for the service property @p name: only settings can be set, each
 * with its type, and the IPv4 settings must name a method and, for "manual", valid addresses.
 */
PropertyVerdict judgeServiceProperty(const QString &name, const QVariant &value);

#endif
