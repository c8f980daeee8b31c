#include "ipv4repair.h"

#include <QStringList>

#include <algorithm>

namespace
{
/** The default netmask and gateway by the class of the address. */
const struct AddressClass {
    int highestFirstByte;
    /** The gateway: this number of bytes of the address, followed by gatewayEnd. */
    int addressBytes;
    const char *gatewayEnd;
    const char *netmask;
} addressClasses[] = {
    {127, 1, ".0.0.1", "255.0.0.0"},
    {191, 2, ".0.1", "255.255.0.0"},
    {223, 3, ".1", "255.255.255.0"},
    {255, 4, "", "255.255.255.255"},
};

const AddressClass &classOf(const QStringList &numbers)
{
    const AddressClass *found = addressClasses;
    while (numbers.first().toInt() > found->highestFirstByte)
        ++found;
    return *found;
}

/** Returns true if @p text is a decimal number up to 255 without leading zeros. */
bool isByte(const QString &text)
{
    const int number = text.toInt();
    return number >= 0 && number <= 255 && text == QString::number(number);
}
} // namespace

bool isValidIPv4(const QString &text)
{
    const QStringList numbers = text.split(QLatin1Char('.'));
    return numbers.size() == 4 && text != QLatin1String("0.0.0.0") &&
           std::all_of(numbers.cbegin(), numbers.cend(), isByte);
}

QVariantMap repairedIPv4(QVariantMap settings)
{
    const auto isValid = [&settings](const QString &key) {
        return isValidIPv4(settings.value(key).toString());
    };
    const QString address = QStringLiteral("Address");
    if (!isValid(address))
        settings[address] = QStringLiteral("192.168.2.3");

    const QStringList numbers = settings.value(address).toString().split(QLatin1Char('.'));
    const AddressClass &addressClass = classOf(numbers);
    const QString netmask = QStringLiteral("Netmask");
    if (!isValid(netmask))
        settings[netmask] = QString::fromLatin1(addressClass.netmask);
    const QString gateway = QStringLiteral("Gateway");
    if (!isValid(gateway))
        settings[gateway] =
            QStringList(numbers.mid(0, addressClass.addressBytes)).join(QLatin1Char('.')) +
            QLatin1String(addressClass.gatewayEnd);
    return settings;
}

bool isInForce(const QVariantMap &settings, const QVariantMap &present)
{
    const auto agrees = [&](const QString &key) {
        return !settings.contains(key) || settings.value(key) == present.value(key);
    };
    const QString method = QStringLiteral("Method");
    if (!agrees(method))
        return false;
    if (settings.value(method, QStringLiteral("manual")) != QStringLiteral("manual"))
        return true;
    return agrees(QStringLiteral("Address")) && agrees(QStringLiteral("Netmask")) &&
           agrees(QStringLiteral("Gateway"));
}
