#include "choices.h"
#include "ipv4repair.h"
#include "require.h"

namespace
{
QString address(Choices &choices)
{
    if (choices.oneIn(4))
        return QString::fromStdString(choices.text());
    QStringList numbers;
    for (quint32 left = 4 + choices.below(4) / 3; left > 0; --left)
        numbers << QString::number(choices.below(260));
    return numbers.join(QLatin1Char('.'));
}

QVariantMap settings(Choices &choices)
{
    QVariantMap made;
    for (const char *key : {"Address", "Netmask", "Gateway", "Method"}) {
        if (!choices.oneIn(4))
            made[QLatin1String(key)] = address(choices);
    }
    if (choices.oneIn(2))
        made[QStringLiteral("Method")] = QStringLiteral("manual");
    return made;
}
} // namespace

/** A client's IPv4 settings, valid and invalid. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Choices choices(data, size);
    const QVariantMap given = settings(choices);
    const QVariantMap repaired = repairedIPv4(given);
    for (const char *name : {"Address", "Netmask", "Gateway"}) {
        const QString key = QLatin1String(name);
        const QString before = given.value(key).toString();
        require(isValidIPv4(repaired.value(key).toString()), "every repaired address is valid");
        require(!isValidIPv4(before) || repaired.value(key) == before, "a valid address stays");
    }
    require(repairedIPv4(repaired) == repaired, "a second repair changes nothing");
    require(isInForce(repaired, repaired), "settings match themselves");
    isInForce(given, settings(choices));
    return 0;
}
