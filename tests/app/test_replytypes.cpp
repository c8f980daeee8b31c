#include "documentedarguments.h"
#include "ethernettest.h"

#include <QRegularExpression>

/**
 * On every machine, all replies of the daemon have the types of the introspection documents, also
 * inside variants and dictionaries.
 */
class TestReplyTypes : public EthernetTest
{
    Q_OBJECT

private Q_SLOTS:
    void everyReplyHasTheTypesOfItsDocument();
};

namespace
{
/** Replaces the values in a rendered reply by their types; the keys of dictionaries stay. */
QString types(const QString &rendered)
{
    // A key with its colon, then a value as render() formats it.
    static const QRegularExpression token(
        QStringLiteral("(?<key>\"[^\"]*\":)|(?<bytes>ay):\"[^\"]*\"|(?<text>\"[^\"]*\")"
                       "|(?<number>[a-z]):[-+.0-9e]+|(?<truth>true|false)|(?<integer>-?[0-9]+)"));
    QString result;
    int end = 0;
    auto matches = token.globalMatch(rendered);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        result += rendered.midRef(end, match.capturedStart() - end);
        end = match.capturedEnd();
        for (const char *kept : {"key", "bytes", "number"})
            result += match.captured(QLatin1String(kept));
        if (!match.captured(QStringLiteral("text")).isEmpty())
            result += 's';
        if (!match.captured(QStringLiteral("truth")).isEmpty())
            result += 'b';
        if (!match.captured(QStringLiteral("integer")).isEmpty())
            result += 'i';
    }
    result += rendered.midRef(end);
    // Reduce a list of equal types to its first element.
    static const QRegularExpression repeated(QStringLiteral("\\[([\\w<>]+)(, \\1)+\\]"));
    return result.replace(repeated, QStringLiteral("[\\1...]"));
}

const DocumentedArgument *documented(const QString &interface, const QString &name)
{
    for (const DocumentedArgument &argument : documentedArguments()) {
        if (argument.interface == interface && argument.name == name)
            return &argument;
    }
    return nullptr;
}

/** The keys of a map in @p interface; "{led}" stands for every value of the argument "led". */
QStringList keysOf(const QString &interface, const QString &key)
{
    if (!key.startsWith('{'))
        return {key};
    const DocumentedArgument *named = documented(interface, key.mid(1, key.size() - 2));
    return named ? named->choices() : QStringList();
}

/** The type of @p reply as types() shows it. */
QString expectedTypes(const DocumentedArgument &reply)
{
    // All documented lists of variants contain unsigned numbers.
    const auto shown = [](const QString &type) { return type == "av" ? "[<u>...]" : type; };
    if (reply.type != "a{sv}")
        return shown(reply.type);
    QStringList entries;
    for (auto entry = reply.keys.begin(); entry != reply.keys.end(); ++entry) {
        for (const QString &key : keysOf(reply.interface, entry.key())) {
            // The application /opt/KyApp is not installed.
            if (key != "KyApp")
                entries << QString("\"%1\": <%2>").arg(key, shown(entry.value()));
        }
    }
    entries.sort();
    return '{' + entries.join(", ") + '}';
}

/** Arguments with which @p method succeeds: the first documented value of each one. */
QVariantList argumentsOf(const QString &interface, const QString &method)
{
    QVariantList values;
    for (const DocumentedArgument &argument : documentedArguments()) {
        if (argument.interface == interface && argument.member == method &&
            argument.direction == "in")
            values << argument.choices().value(0);
    }
    return values;
}
} // namespace

void TestReplyTypes::everyReplyHasTheTypesOfItsDocument()
{
    writeFile("/etc/sw_version", "1.2");
    connman.setServices({wired(cable, lease), wireless()});
    startDaemon();
    connectUntil("online");
    // The Wi-Fi station and the access point are not connected.
    const QStringList empty = {"WIFI", "WIFIAP"};
    int replies = 0;
    for (const DocumentedArgument &reply : documentedArguments()) {
        if (reply.direction == "in" || reply.interface == "Agent")
            continue;
        const Remote remote(reply.path, reply.interface);
        const bool isProperty = reply.direction == "property";
        const QString shown = types(
            isProperty ? remote.property(reply.member)
                       : remote.call(reply.member, argumentsOf(reply.interface, reply.member)));
        const QString expected = empty.contains(reply.interface) ? "{}" : expectedTypes(reply);
        const QString place = QString("%1.%2: ").arg(reply.interface, reply.member);
        QCOMPARE(place + shown, place + QString(isProperty ? "(<%1>)" : "(%1)").arg(expected));
        ++replies;
    }
    QVERIFY(replies > 0);
}

WORLD_TEST_MAIN(TestReplyTypes)
#include "test_replytypes.moc"
