#ifndef IPV4REPAIR_H
#define IPV4REPAIR_H

#include <QString>
#include <QVariant>

/**
 * Whether @p text is an IPv4 address other than 0.0.0.0, in its canonical form: without blanks,
 * leading zeros or missing parts.
 */
bool isValidIPv4(const QString &text);

/**
 * @p settings with a valid "Address", "Netmask" and "Gateway".
 *
 * What is valid stays. The address becomes "192.168.2.3"; the netmask that of the address's class
 * (A up to 127, B up to 191, C up to 223, all ones above); the gateway the first host of the
 * address's network by that class, and the address itself above 223.
 */
QVariantMap repairedIPv4(QVariantMap settings);

/**
 * Whether a service whose "IPv4" property is @p present already is as @p settings want it.
 *
 * Only what the settings hold is compared, and the addresses only where the method "manual", or
 * none, goes with them: any other method finds its own.
 */
bool isInForce(const QVariantMap &settings, const QVariantMap &present);

#endif
