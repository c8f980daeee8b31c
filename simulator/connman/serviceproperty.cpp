#include "serviceproperty.h"

#include "reply.h"

#include <netdb.h>

namespace
{
const struct {
    const char *name;
    const char *signature;
} settings[] = {
    {"AutoConnect", "b"},
    {"Domains.Configuration", "as"},
    {"IPv4.Configuration", "a{sv}"},
    {"IPv6.Configuration", "a{sv}"},
    {"Nameservers.Configuration", "as"},
    {"Proxy.Configuration", "a{sv}"},
    {"Timeservers.Configuration", "as"},
    {"mDNS.Configuration", "b"},
};

/** Returns true for each address that the C library parses, also for short forms such as 10.7. */
bool isAddress(const QVariant &value)
{
    addrinfo hints = {};
    hints.ai_family = AF_INET;
    hints.ai_flags = AI_NUMERICHOST;
    addrinfo *found = nullptr;
    if (getaddrinfo(qPrintable(value.toString()), nullptr, &hints, &found) != 0)
        return false;
    freeaddrinfo(found);
    return true;
}

bool isAddressWherePresent(const QVariantMap &map, const QString &key)
{
    return map.value(key).toString().isEmpty() || isAddress(map.value(key));
}

bool isIPv4Configuration(const QVariantMap &map)
{
    const QString method = map.value(QStringLiteral("Method")).toString();
    if (method == QLatin1String("manual"))
        return isAddress(map.value(QStringLiteral("Address"))) &&
               isAddressWherePresent(map, QStringLiteral("Netmask")) &&
               isAddressWherePresent(map, QStringLiteral("Gateway"));
    return method == QLatin1String("dhcp") || method == QLatin1String("off");
}
} // namespace

PropertyVerdict judgeServiceProperty(const QString &name, const QVariant &value)
{
    for (const auto &setting : settings) {
        if (name != QLatin1String(setting.name))
            continue;
        if (signatureOf(value) != QLatin1String(setting.signature))
            return PropertyVerdict::InvalidArguments;
        if (name == QLatin1String("IPv4.Configuration") && !isIPv4Configuration(mapOf(value)))
            return PropertyVerdict::InvalidArguments;
        return PropertyVerdict::Accepted;
    }
    return PropertyVerdict::InvalidProperty;
}
