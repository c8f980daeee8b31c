#include "busvalue.h"
#include "ipv4settings.h"
#include "peer.h"
#include "require.h"
#include "settingtext.h"

/** The maps of several successive setIPv4 calls. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Choices choices(data, size);
    Ipv4Settings kept;
    do {
        const QVariantMap settings = firstMap(Peer::instance().receive("a{sv}", choices));
        settingText(settings, "Service");
        const QStringList before = kept.nameservers();
        kept.take(settings);
        require(kept.nameservers().size() <= 64, "name servers are limited");
        require(kept.nameservers().size() >= before.size(), "name servers are added only");
        for (const QVariant &value : kept.configuration()) {
            require(value.type() == QVariant::String, "ConnMan gets texts");
            require(value.toString().size() <= 255, "the texts are limited");
        }
        require(Peer::instance().canSend({kept.configuration()}), "the settings can be sent");
    } while (choices.oneIn(2));
    return 0;
}
