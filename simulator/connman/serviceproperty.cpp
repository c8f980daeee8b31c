#include "serviceproperty.h"

#include "reply.h"

#include <arpa/inet.h>

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

bool isAddress(const QVariant &value)
{
    in_addr address = {};
    return inet_pton(AF_INET, qPrintable(value.toString()), &address) == 1;
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
