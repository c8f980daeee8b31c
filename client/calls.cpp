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

/** The answer with other values in the place of the secrets in it. */
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
} // namespace

ExitStatus runCall(const Command &command, const Invocation &invocation,
                   const QVariantList &arguments)
{
    const Answer answer = command.property.isEmpty()
                              ? call(command.path, command.interface, command.method, arguments)
                              : readProperty(command.path, command.interface, command.property);
    if (!answer.isGood())
        return fail(command, answer);
    if (isNothing(command, answer))
        return tellOfNothing(command, invocation);
    const bool asJson = invocation.has("--json");
    QVariantList values = answer.values;
    if (!invocation.has("--show-secrets"))
        values = withoutSecrets(command, values,
                                asJson ? QVariant() : QStringLiteral("hidden (--show-secrets)"));
    if (asJson)
        printJson(replyJson(values));
    else
        print(replyText(values));
    return Success;
}
