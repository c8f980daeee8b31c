#include "busvalue.h"
#include "peer.h"
#include "present.h"
#include "require.h"

#include <QJsonDocument>
#include <QJsonObject>

/** Replies of any content, as kyboardctl shows them. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Choices choices(data, size);
    const QVariantList received = Peer::instance().receiveAnything(choices);
    QVariantList values;
    for (const QVariant &value : received)
        values << plainValue(value);

    const QString text = replyText(values);
    require(text.isEmpty() || text.endsWith(QLatin1Char('\n')), "a reply ends its line");
    const QByteArray json =
        QJsonDocument(QJsonObject{{QStringLiteral("reply"), replyJson(values)}}).toJson();
    require(!QJsonDocument::fromJson(json).isNull(), "machines can read a reply");
    return 0;
}
