#include "agentanswer.h"
#include "peer.h"
#include "render.h"
#include "require.h"

/** The fields that ConnMan, or a peer that pretends to be it, asks the agent for. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Choices choices(data, size);
    const Credentials credentials = {anyText(choices), anyText(choices)};
    const QVariantMap fields = firstMap(Peer::instance().receive("a{sv}", choices));
    const QVariantMap answer = agentAnswer(fields, credentials);

    for (auto entry = answer.constBegin(); entry != answer.constEnd(); ++entry) {
        require(fields.contains(entry.key()), "only requested fields are answered");
        require(entry.value() == (entry.key() == QLatin1String("Passphrase")
                                      ? credentials.passphrase
                                      : credentials.identity),
                "each field gets its own credential");
    }
    require(agentAnswer(fields, credentials) == answer, "the same request has the same answer");
    require(Peer::instance().canSend({answer}), "the answer can be sent");
    return 0;
}
