#include "passphrase.h"

#include "textrules.h"

namespace
{
/**
 * Reads a passphrase and checks it with @p accepts. Returns false, with @p complaint, on failure.
 */
bool readPassphrase(const QString &prompt, const SecretReader &reader,
                    bool (*accepts)(const QString &), const QString &wanted, QString &passphrase,
                    QString &complaint)
{
    if (!reader(prompt, passphrase))
        complaint = QStringLiteral("no %1 on standard input").arg(prompt.toLower());
    else if (!accepts(passphrase))
        complaint = QStringLiteral("%1: what was given is not %2").arg(prompt, wanted);
    return complaint.isEmpty();
}

bool completeConnect(const Invocation &invocation, const SecretReader &reader,
                     QVariantList &arguments, QString &complaint)
{
    const QString user = invocation.value("--user");
    QString password;
    if (invocation.has("--open") && invocation.has("--user")) {
        complaint = QStringLiteral("--open and --user exclude each other");
    } else if (invocation.has("--user") && !isUserName(user)) {
        complaint = QStringLiteral("--user: '%1' is not up to 255 characters without control "
                                   "characters")
                        .arg(shown(user));
    } else if (invocation.has("--user")) {
        // The limits of a network's passphrase do not apply to a user's password.
        readPassphrase(QStringLiteral("Password"), reader, isUserName,
                       QStringLiteral("1 to 255 characters without control characters"), password,
                       complaint);
    } else if (!invocation.has("--open") &&
               !readPassphrase(QStringLiteral("Passphrase"), reader, isNetworkKey,
                               QStringLiteral("8 to 63 ASCII characters (WEP: 5 or 13)"), password,
                               complaint)) {
        complaint += QStringLiteral(" (--open for none)");
    }
    arguments = {QVariantMap{{QStringLiteral("Service"), arguments.value(0)},
                             {QStringLiteral("User"), user},
                             {QStringLiteral("Password"), password}}};
    return complaint.isEmpty();
}

bool completeAccessPoint(const SecretReader &reader, QVariantList &arguments, QString &complaint)
{
    QVariantMap map = arguments.value(0).toMap();
    if (map.value(QStringLiteral("Security")) == QLatin1String("WPA2")) {
        QString password;
        readPassphrase(QStringLiteral("Password"), reader, isPassphrase,
                       QStringLiteral("8 to 63 ASCII characters"), password, complaint);
        map.insert(QStringLiteral("Password"), password);
    }
    arguments = {map};
    return complaint.isEmpty();
}
} // namespace

bool addPassphrase(const Command &command, const Invocation &invocation, const SecretReader &reader,
                   QVariantList &arguments, QString &complaint)
{
    if (command.words == QLatin1String("wifi connect"))
        return completeConnect(invocation, reader, arguments, complaint);
    if (command.words == QLatin1String("ap start"))
        return completeAccessPoint(reader, arguments, complaint);
    return true;
}
