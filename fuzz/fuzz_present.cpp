#include "busvalue.h"
#include "layout.h"
#include "peer.h"
#include "present.h"
#include "require.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

/** Replies with any content, formatted by kyboardctl. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Choices choices(data, size);
    const QVariantList received = Peer::instance().receiveAnything(choices);
    QVariantList values;
    for (const QVariant &value : received)
        values << plainValue(value);

    const QString text = replyText(values);
    require(text.isEmpty() || text.endsWith(QLatin1Char('\n')), "a reply ends with a line feed");
    QString plain = coloured(text);
    require(plain.remove(QRegularExpression(QStringLiteral("\033\\[[0-9]+m"))).size() <=
                text.size(),
            "colours add nothing else");
    const QString lines = wrapped(text, 80);
    require(lines.simplified().size() == text.simplified().size(), "wrapping changes only blanks");
    const QByteArray json =
        QJsonDocument(QJsonObject{{QStringLiteral("reply"), replyJson(values)}}).toJson();
    require(!QJsonDocument::fromJson(json).isNull(), "a reply is valid JSON");
    return 0;
}
