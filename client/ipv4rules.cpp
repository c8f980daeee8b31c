#include "ipv4rules.h"

#include "ipv4repair.h"

#include <QHostAddress>

namespace
{
quint32 number(const QVariant &address)
{
    return QHostAddress(address.toString()).toIPv4Address();
}

int prefixLength(quint32 netmask)
{
    int length = 0;
    while (length < 32 && (netmask & (0x80000000U >> length)) != 0)
        ++length;
    return length;
}

QString networkText(quint32 address, quint32 netmask)
{
    return QStringLiteral("%1/%2")
        .arg(QHostAddress(address & netmask).toString())
        .arg(prefixLength(netmask));
}

/**
 * Returns the error if @p address is the network's own or its broadcast address. Networks with a
 * prefix of 31 or 32 bits have neither.
 */
QString addressDisagreement(const char *name, quint32 address, quint32 netmask)
{
    const quint32 host = address & ~netmask;
    if (prefixLength(netmask) > 30 || (host != 0 && host != ~netmask))
        return QString();
    return QStringLiteral("%1: '%2' is the %3 address of the network %4, not of a host")
        .arg(QString::fromLatin1(name), QHostAddress(address).toString(),
             host == 0 ? QStringLiteral("network's own") : QStringLiteral("broadcast"),
             networkText(address, netmask));
}
} // namespace

bool isHostAddress(const QString &text)
{
    if (!isValidIPv4(text))
        return false;
    const quint32 first = number(text) >> 24;
    return first != 0 && first != 127 && first < 224;
}

bool isNetmask(const QString &text)
{
    if (!isValidIPv4(text))
        return false;
    const quint32 zeros = ~number(text);
    return (zeros & (zeros + 1)) == 0;
}

bool isServerAddress(const QString &text)
{
    QHostAddress address;
    return isHostAddress(text) ||
           (text.contains(QLatin1Char(':')) && address.setAddress(text) &&
            address.protocol() == QAbstractSocket::IPv6Protocol && address.scopeId().isEmpty() &&
            !address.isInSubnet(QHostAddress(QStringLiteral("ff00::")), 8) &&
            address != QHostAddress(QHostAddress::AnyIPv6));
}

QString ipv4Disagreement(const QVariantMap &settings)
{
    const bool isManual = settings.value(QStringLiteral("Method")) == QLatin1String("manual");
    const bool hasAddress = settings.contains(QStringLiteral("Address"));
    if (!hasAddress)
        return isManual ? QStringLiteral("Address= is missing, which Method=manual needs")
                        : QString();
    const bool hasGateway = settings.contains(QStringLiteral("Gateway"));
    // Without "Method" = "manual", the daemon may have stored the values that are missing here.
    if (!isManual && !settings.contains(QStringLiteral("Netmask")))
        return QString();
    const QVariantMap filled = repairedIPv4(settings);
    const quint32 netmask = number(filled.value(QStringLiteral("Netmask")));
    const quint32 address = number(filled.value(QStringLiteral("Address")));
    QString disagreement = addressDisagreement("Address", address, netmask);
    if (!disagreement.isEmpty() || (!isManual && !hasGateway))
        return disagreement;
    const QVariant gateway = filled.value(QStringLiteral("Gateway"));
    if (((number(gateway) ^ address) & netmask) == 0)
        return addressDisagreement("Gateway", number(gateway), netmask);
    return hasGateway
               ? QStringLiteral("Gateway: '%1' is not in the network %2 of the address")
                     .arg(gateway.toString(), networkText(address, netmask))
               : QStringLiteral("Gateway= is missing: the default, %1, is not in the network %2")
                     .arg(gateway.toString(), networkText(address, netmask));
}
