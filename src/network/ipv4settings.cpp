#include "ipv4settings.h"

#include "ipv4repair.h"
#include "settingtext.h"

namespace
{
// No address, name or method is longer; longer texts could exceed the bus's message limit.
constexpr int longestSetting = 255;

// The name servers of all calls accumulate. No resolver uses this many.
constexpr int mostNameservers = 64;

QString boundedText(const QVariantMap &settings, const char *key)
{
    const QString text = settingText(settings, key);
    return text.size() <= longestSetting ? text : QString();
}
} // namespace

void Ipv4Settings::take(const QVariantMap &settings)
{
    for (const char *key : {"Method", "Address", "Netmask", "Gateway"}) {
        if (settings.contains(QLatin1String(key)))
            m_configuration[QLatin1String(key)] = boundedText(settings, key);
    }
    for (const char *key : {"DNS1", "DNS2"}) {
        if (settings.contains(QLatin1String(key)))
            m_nameservers << boundedText(settings, key);
        if (m_nameservers.size() > mostNameservers)
            m_nameservers.removeFirst();
    }
    if (m_configuration.value(QStringLiteral("Method")) == QStringLiteral("manual"))
        m_configuration = repairedIPv4(m_configuration);
}
