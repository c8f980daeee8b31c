#ifndef IPV4REPAIR_H
#define IPV4REPAIR_H

#include <QString>
#include <QVariant>

/**
 * Returns true if @p text is an IPv4 address other than 0.0.0.0, in its canonical form: without
 * blanks, leading zeros or missing parts.
 */
bool isValidIPv4(const QString &text);

/**
 * Returns @p settings with a valid "Address", "Netmask" and "Gateway".
 *
 * Valid values stay. An invalid address becomes "192.168.2.3". The first byte of the address
 * determines its default netmask: 255.0.0.0 up to 127, 255.255.0.0 up to 191, 255.255.255.0 up to
 * 223, and 255.255.255.255 above. An invalid netmask becomes this default netmask. An invalid
 * gateway becomes the first host of the network with the default netmask, even if @p settings has
 * another valid netmask. If the first byte is above 223, the gateway becomes the address itself.
 */
QVariantMap repairedIPv4(QVariantMap settings);

/**
 * Returns true if @p present, the "IPv4" property of a service, already matches @p settings.
 *
 * Compares only the keys in @p settings. Compares "Address", "Netmask" and "Gateway" only if the
 * method is "manual" or missing: with any other method, ConnMan determines them.
 */
bool isInForce(const QVariantMap &settings, const QVariantMap &present);

#endif
