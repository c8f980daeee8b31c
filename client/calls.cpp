#include "calls.h"

#include "output.h"
#include "present.h"
#include "terminal.h"

namespace
{
bool isConnected(const Command &command)
{
    const Answer answer = call(command.path, command.interface, QStringLiteral("getIPv4"));
    return !answer.values.value(0).toMap().value(QStringLiteral("Address")).toString().isEmpty();
}

bool isNothing(const Command &command, const Answer &answer)
{
    return !command.nothing.isEmpty() && (answer.values.value(0).toMap().isEmpty() ||
                                          (command.needsAddress && !isConnected(command)));
}

/** Returns @p values. Replaces each secret by @p instead. */
QVariantList withoutSecrets(const Command &command, const QVariantList &values,
                            const QVariant &instead)
{
    if (command.secrets.isEmpty())
        return values;
    QVariantMap map = values.value(0).toMap();
    for (const QString &key : command.secrets) {
        if (map.contains(key))
            map.insert(key, instead);
    }
    return {map};
}

ExitStatus printVolts(uint millivolts, bool asJson)
{
    const double volts = millivolts / 1000.0;
    if (asJson)
        printJson(volts);
    else
        print(QStringLiteral("%1 V\n").arg(volts, 0, 'f', 3));
    return Success;
}
} // namespace

ExitStatus runCall(const Command &command, const Invocation &invocation,
                   const QVariantList &arguments)
{
    const QString field = invocation.value("--field");
    if (command.secrets.contains(field) && !invocation.has("--show-secrets"))
        return fail(command, BadUsage,
                    field + QStringLiteral(" is shown with --show-secrets only"));
    const Answer answer = command.property.isEmpty()
                              ? call(command.path, command.interface, command.method, arguments)
                              : readProperty(command.path, command.interface, command.property);
    if (!answer.isGood())
        return fail(command, answer);
    if (isNothing(command, answer))
        return tellOfNothing(command, invocation);
    const bool asJson = invocation.has("--json");
    QVariantList values = answer.values;
    if (invocation.value("--unit") == QLatin1String("V"))
        return printVolts(values.value(0).toUInt(), asJson);
    if (!invocation.has("--show-secrets"))
        values = withoutSecrets(command, values,
                                asJson ? QVariant() : QStringLiteral("hidden (--show-secrets)"));
    if (invocation.has("--field"))
        return printField(command, invocation, values.value(0).toMap());
    if (asJson)
        printJson(replyJson(values));
    else
        show(replyText(values, command.unit));
    return Success;
}
