#include "failurereason.h"

namespace
{
/** ConnMan's values of "Error", and the reasons that users see. */
const struct {
    const char *error;
    const char *reason;
} errors[] = {
    {"invalid-key", "wrong passphrase"},
    {"out-of-range", "the network is out of reach"},
    {"dhcp-failed", "no address"},
    {"connect-failed", "the network refuses the connection"},
    {"auth-failed", "the network refuses the login"},
    {"login-failed", "the network refuses the login"},
    {"blocked", "the network blocks this instrument"},
};

QString reasonOf(const QString &error)
{
    for (const auto &known : errors) {
        if (error == QLatin1String(known.error))
            return QString::fromLatin1(known.reason);
    }
    return error;
}

bool hasReached(const FailureFacts &facts, const char *state)
{
    return facts.states.contains(QString::fromLatin1(state));
}
} // namespace

QString failureReason(const FailureFacts &facts)
{
    if (facts.group == QLatin1String("ap"))
        return QStringLiteral("hostapd, dhcpd or the interface wifi_ap did not come up");
    if (!facts.isConnmanThere)
        return QStringLiteral("ConnMan does not run");
    if (!facts.error.isEmpty())
        return reasonOf(facts.error);
    if (hasReached(facts, "configuration") || hasReached(facts, "ready"))
        return QStringLiteral("no address");
    if (facts.group == QLatin1String("ethernet"))
        return hasReached(facts, "association") ? QStringLiteral("no cable, or no network on it")
                                                : QString();
    if (hasReached(facts, "association"))
        return QStringLiteral("time-out, the network does not answer");
    return facts.isListed ? QString() : QStringLiteral("network not found");
}

bool isServiceOf(const QString &path, const QString &network)
{
    // wifi_<hardware address>_<name in hexadecimal>_managed_<security>
    const QStringList parts = path.section(QLatin1Char('/'), -1).split(QLatin1Char('_'));
    return parts.size() >= 3 && parts.first() == QLatin1String("wifi") &&
           parts.at(2) == QString::fromLatin1(network.toUtf8().toHex());
}
