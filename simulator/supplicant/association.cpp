#include "association.h"

namespace
{
bool fits(const AccessPoint &accessPoint, const QVariantMap &network)
{
    const bool usesKey =
        network.value(QStringLiteral("key_mgmt")).toString().contains(QLatin1String("WPA-PSK"));
    // A hidden access point answers only requests by its name.
    const bool asks = network.value(QStringLiteral("scan_ssid")).toUInt() == 1;
    return accessPoint.isInRange && usesKey == accessPoint.isProtected &&
           (asks || !accessPoint.isHidden) &&
           network.value(QStringLiteral("ssid")).toByteArray() == accessPoint.ssid;
}

bool accepts(const AccessPoint &accessPoint, const QVariantMap &network)
{
    return !accessPoint.refuses &&
           network.value(QStringLiteral("psk")).toString().toUtf8() == accessPoint.passphrase;
}
} // namespace

QString chooseAccessPoint(const AccessPoints &air, const QVariantMap &network)
{
    QString chosen;
    for (auto entry = air.begin(); entry != air.end(); ++entry) {
        if (fits(*entry, network) && (chosen.isEmpty() || entry->signal > air.value(chosen).signal))
            chosen = entry.key();
    }
    return chosen;
}

QStringList associationSteps(const AccessPoints &air, const QString &chosen,
                             const QVariantMap &network)
{
    QStringList steps{QStringLiteral("associating")};
    if (chosen.isEmpty())
        return steps << QStringLiteral("disconnected");
    const AccessPoint accessPoint = air.value(chosen);
    if (accessPoint.isMute)
        return steps;
    steps << QStringLiteral("associated");
    if (!accessPoint.isProtected)
        return steps << QStringLiteral("completed");
    steps << QStringLiteral("4way_handshake");
    return steps << (accepts(accessPoint, network) ? QStringLiteral("completed")
                                                   : QStringLiteral("disconnected"));
}
