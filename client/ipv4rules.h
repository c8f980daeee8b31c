#ifndef IPV4RULES_H
#define IPV4RULES_H

#include <QString>
#include <QVariantMap>

/*
 * Which IPv4 settings make sense. Pure: texts in, what is wrong with them out.
 */

/**
 * Whether @p text is the address of a host: IPv4 in its canonical form (no blanks, no leading
 * zeros, four parts), not of the networks 0 and 127, and below 224.
 */
bool isHostAddress(const QString &text);

/** Whether @p text is a netmask in its canonical form, of 1 to 32 ones in a row. */
bool isNetmask(const QString &text);

/** Whether @p text is the address of a name server, IPv4 or IPv6. */
bool isServerAddress(const QString &text);

/**
 * What is wrong with settings for ConnMan, each of which is right by itself; empty where nothing
 * is.
 *
 * "Method" = "manual" needs an "Address". The daemon fills in a netmask and a gateway by the class
 * of the address where they are missing: the gateway that results has to be in the network of the
 * address, and the address must not be that of the network itself, or of all of its hosts.
 */
QString ipv4Disagreement(const QVariantMap &settings);

#endif
