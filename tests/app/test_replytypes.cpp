#include "board.h"
#include "ethernettest.h"
#include "introspection.h"

#include <QRegularExpression>

#include <cstdio>

/**
 * The types of all replies of the daemon, including those inside variants and dictionaries.
 * Compared with the same file on every machine.
 */
class TestReplyTypes : public EthernetTest
{
    Q_OBJECT

private Q_SLOTS:
    void everyMachineHasTheSame();
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
    // Reduce equal elements to one.
    static const QRegularExpression repeated(QStringLiteral("\\[([\\w<>]+)(, \\1)+\\]"));
    return result.replace(repeated, QStringLiteral("[\\1...]"));
}

/** Arguments for a method that make its reply non-empty. */
QVariantList argumentsOf(const QString &member)
{
    return member.startsWith(QLatin1String("method isMounted")) ? QVariantList{"SD"}
                                                                : QVariantList();
}
} // namespace

void TestReplyTypes::everyMachineHasTheSame()
{
    writeFile("/etc/sw_version", "1.2");
    connman.setServices({wired(cable, lease), wireless()});
    startDaemon();
    connectUntil("online");
    const QString prefix = QStringLiteral("com.orvendis.Strandel.BoardManager.");
    QStringList lines;
    for (const char *path : {"/KyConfigMgr", "/KyComMgr", "/KyDeviceMgr"}) {
        const Introspection object = introspect(path);
        for (auto interface = object.interfaces.begin(); interface != object.interfaces.end();
             ++interface) {
            if (!interface.key().startsWith(prefix))
                continue;
            const QString name = interface.key().mid(prefix.size());
            const Remote remote(path, name);
            for (const QString &member : interface.value()) {
                const QString called = member.section(QRegularExpression("[ (]"), 1, 1);
                if (member.startsWith("property "))
                    lines << name + '.' + called + ": " + types(remote.property(called));
                else if (member.startsWith("method ") && member.contains("out "))
                    lines << name + '.' + called + ": " +
                                 types(remote.call(called, argumentsOf(member)));
            }
        }
    }
    const QStringList expected =
        QString::fromUtf8(readFile(QStringLiteral(EXPECTED))).split('\n', Qt::SkipEmptyParts);
    if (lines != expected)
        std::puts(qPrintable(lines.join('\n')));
    QCOMPARE(lines, expected);
}

WORLD_TEST_MAIN(TestReplyTypes)
#include "test_replytypes.moc"
