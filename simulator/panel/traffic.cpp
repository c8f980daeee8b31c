#include "traffic.h"

#include <QDateTime>
#include <QJsonArray>
#include <QStringList>

#include <algorithm>

namespace
{
const QString ownPrefix = QStringLiteral("com.orvendis.Strandel.BoardManager.");
constexpr int longestText = 400;

QString cut(const QString &text)
{
    return text.size() > longestText ? text.left(longestText) + QStringLiteral("\u2026") : text;
}

QString argumentsText(const QJsonObject &message)
{
    QStringList texts;
    const QJsonArray data =
        message.value(QLatin1String("payload")).toObject().value(QLatin1String("data")).toArray();
    for (const QJsonValue &value : data)
        texts << valueText(value);
    return cut(texts.join(QStringLiteral(", ")));
}
} // namespace

QString valueText(const QJsonValue &value)
{
    if (value.isString())
        return QLatin1Char('"') + value.toString() + QLatin1Char('"');
    if (value.isBool())
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    if (value.isDouble())
        return QString::number(value.toDouble(), 'g', 10);
    QStringList parts;
    if (value.isArray()) {
        const QJsonArray array = value.toArray();
        for (const QJsonValue &element : array)
            parts << valueText(element);
        return QLatin1Char('[') + parts.join(QStringLiteral(", ")) + QLatin1Char(']');
    }
    const QJsonObject object = value.toObject();
    if (object.size() == 2 && object.value(QLatin1String("type")).isString() &&
        object.contains(QLatin1String("data")))
        return valueText(object.value(QLatin1String("data")));
    for (auto entry = object.constBegin(); entry != object.constEnd(); ++entry)
        parts << entry.key() + QStringLiteral(": ") + valueText(entry.value());
    return QLatin1Char('{') + parts.join(QStringLiteral(", ")) + QLatin1Char('}');
}

QString TrafficLine::text() const
{
    const QString name = interface + QLatin1Char('.') + member;
    switch (kind) {
    case Signal:
        return QStringLiteral("%1  signal  %2(%3)").arg(time, name, values);
    case Call:
        return QStringLiteral("%1  call    %2(%3)").arg(time, name, values);
    case Reply:
        return QStringLiteral("%1  reply   %2: %3").arg(time, name, values);
    case Error:
        return QStringLiteral("%1  error   %2: %3").arg(time, name, values);
    }
    return {};
}

/** Removes and returns the pending call with this serial number; an empty call if there is none. */
Traffic::Call Traffic::takeCall(const QString &caller, int serial)
{
    const auto call = std::find_if(m_calls.begin(), m_calls.end(), [&](const Call &other) {
        return other.serial == serial && other.caller == caller;
    });
    if (call == m_calls.end())
        return {};
    Call found = *call;
    m_calls.erase(call);
    return found;
}

bool Traffic::take(const QJsonObject &message, const QString &ignored, TrafficLine &line)
{
    const auto field = [&](const char *name) { return message.value(QLatin1String(name)); };
    const QString type = field("type").toString();
    const QString sender = field("sender").toString();
    const QString receiver = field("destination").toString();
    line = {};
    line.time =
        QDateTime::fromMSecsSinceEpoch(qint64(field("timestamp-realtime").toDouble() / 1000))
            .toString(QStringLiteral("HH:mm:ss.zzz"));
    line.interface = field("interface").toString();
    line.member = field("member").toString();
    line.values = argumentsText(message);
    if (type == QLatin1String("method_call")) {
        line.kind = TrafficLine::Call;
        if (m_calls.size() == mostCalls)
            m_calls.removeFirst();
        m_calls << Call{sender, field("cookie").toInt(), line.interface, line.member};
    } else if (type == QLatin1String("signal")) {
        line.kind = TrafficLine::Signal;
    } else {
        line.kind = TrafficLine::Reply;
        const Call call = takeCall(receiver, field("reply_cookie").toInt());
        line.interface = call.interface;
        line.member = call.member;
        if (type == QLatin1String("error")) {
            line.kind = TrafficLine::Error;
            line.values =
                (field("error_name").toString() + QLatin1Char(' ') + line.values).trimmed();
        }
    }
    if (line.interface.startsWith(ownPrefix))
        line.interface = line.interface.mid(ownPrefix.size());
    // Leave out calls to the bus itself, introspection and pings.
    const bool isOfBus = line.interface.startsWith(QLatin1String("org.freedesktop.DBus")) &&
                         !line.interface.endsWith(QLatin1String(".Properties"));
    return !line.member.isEmpty() && !isOfBus &&
           (ignored.isEmpty() || (sender != ignored && receiver != ignored));
}
