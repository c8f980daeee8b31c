#ifndef SERVICEPROPERTY_H
#define SERVICEPROPERTY_H

#include <QString>
#include <QVariant>

/** ConnMan's verdict on a new property value of a service. */
enum class PropertyVerdict { Accepted, InvalidProperty, InvalidArguments };

/**
 * Returns whether ConnMan accepts @p value for the service property @p name. Most properties are
 * read-only. A setting, for example "AutoConnect", needs a value of its type. The IPv4 settings
 * must also name a method and, for "manual", valid addresses.
 */
PropertyVerdict judgeServiceProperty(const QString &name, const QVariant &value);

#endif
