#ifndef IPV4RULES_H
#define IPV4RULES_H

#include <QString>
#include <QVariantMap>

/* Validates IPv4 settings. Pure: texts in, errors out. */

/**
 * Returns true if @p text is a host address: IPv4 in its canonical form (no blanks, no leading
 * zeros, four parts), whose first part is from 1 to 223, but not 127.
 */
bool isHostAddress(const QString &text);

/** Returns true if @p text is a netmask in its canonical form, with 1 to 32 consecutive ones. */
bool isNetmask(const QString &text);

/** Returns true if @p text is the address of a name server, IPv4 or IPv6. */
bool isServerAddress(const QString &text);

/**
 * Returns the error in a combination of settings, each of which is valid; empty if there is none.
 *
 * "Method" = "manual" needs an "Address". The daemon derives a missing netmask and gateway from the
 * class of the address: the resulting gateway must be in the network of the address, and the
 * address must be neither the network's own nor its broadcast address.
 */
QString ipv4Disagreement(const QVariantMap &settings);

#endif
