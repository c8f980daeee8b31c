#include "commands.h"
#include "files.h"
#include "help.h"
#include "invocation.h"

#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

/** The manual page of kyboardctl documents every command, option and status, and no others. */
class TestKyboardctlPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void thePageIsWellFormed();
    void everyOptionIsDocumented();
    void everyCommandIsDocumented();
    void everyExitStatusIsDocumented();
    void everyExampleIsACommand();

private:
    static void compare(const QStringList &actual, const QStringList &expected);
    static QString plain(QString text);
    static QString sentence(const QString &help);
    void read(const QString &line);

    /**
     * The entries of each section. An entry is "HEADING: text"; each argument of a command adds
     * " | HEADING: text".
     */
    QMap<QString, QStringList> entries;
    QStringList examples;
    QString section;
    bool isHeading = false;
    bool isInside = false;
};

void TestKyboardctlPage::compare(const QStringList &actual, const QStringList &expected)
{
    if (actual != expected)
        qWarning("client/kyboardctl.1 is out of date; run: ninja -C build documents");
    QCOMPARE(actual, expected);
}

/** @p text of the page's source as the reader sees it. */
QString TestKyboardctlPage::plain(QString text)
{
    return text.remove(QRegularExpression("\\\\f[A-Z]"))
        .remove(QRegularExpression("^\\.[BI] "))
        .replace("\\-", "-")
        .replace("\\e", "\\");
}

QString TestKyboardctlPage::sentence(const QString &help)
{
    return help.left(1).toUpper() + help.mid(1) + '.';
}

void TestKyboardctlPage::initTestCase()
{
    const QString page = QString::fromUtf8(readFile(PAGE));
    QVERIFY(!page.isEmpty());
    for (const QString &line : page.split('\n'))
        read(line);
}

void TestKyboardctlPage::read(const QString &line)
{
    if (line.startsWith(".SH ")) {
        section = line.mid(4);
    } else if (line == ".TP") {
        isHeading = true;
    } else if (line == ".RS" || line == ".RE") {
        isInside = line == ".RS";
    } else if (isHeading && isInside) {
        entries[section].last() += " | " + plain(line) + ':';
        isHeading = false;
    } else if (isHeading) {
        entries[section] << plain(line) + ':';
        isHeading = false;
    } else if (section == "EXAMPLES" && line.startsWith("kyboardctl ")) {
        examples << plain(line);
    } else if (!line.startsWith('.') && entries.contains(section)) {
        entries[section].last() += ' ' + plain(line);
    }
}

void TestKyboardctlPage::thePageIsWellFormed()
{
    QProcess groff;
    groff.start("groff", {"-man", "-ww", "-z", "-Tutf8", PAGE});
    QVERIFY2(groff.waitForFinished(), "no groff");
    QCOMPARE(QString::fromUtf8(groff.readAllStandardError()), QString());
    QCOMPARE(groff.exitCode(), 0);
}

void TestKyboardctlPage::everyOptionIsDocumented()
{
    QStringList expected;
    for (const Option &option : options()) {
        const QString letter = option.letter.isEmpty() ? QString() : '-' + option.letter + ", ";
        const QString heading = QString("%1%2 %3").arg(letter, option.name, option.value).trimmed();
        expected << heading + ": " +
                        (onlyCommand(option).isEmpty()
                             ? sentence(option.help)
                             : "With " + onlyCommand(option) + ": " + option.help + '.');
    }
    compare(entries.value("OPTIONS"), expected);
}

void TestKyboardctlPage::everyCommandIsDocumented()
{
    QStringList expected;
    for (const QVector<Command> *table : {&ownCommands(), &commands()}) {
        for (const Command &command : *table) {
            QString entry = synopsis(command) + ": " + sentence(command.help);
            // Arguments of help need no explanation.
            for (const Argument &argument :
                 command.words == "help" ? QVector<Argument>() : command.arguments) {
                const bool isWord = argument.kind != Kind::Settings;
                for (const Argument &each : isWord ? QVector<Argument>{argument} : argument.keys)
                    entry += " | " + each.name + ": " + sentence(argumentText(each));
            }
            expected << entry;
        }
    }
    QStringList actual = entries.value("COMMANDS");
    actual.sort();
    expected.sort();
    compare(actual, expected);
}

void TestKyboardctlPage::everyExitStatusIsDocumented()
{
    QStringList expected;
    for (const StatusMeaning &status : exitStatuses())
        expected << QString("%1: %2").arg(status.status).arg(sentence(status.meaning));
    compare(entries.value("EXIT STATUS"), expected);
}

void TestKyboardctlPage::everyExampleIsACommand()
{
    QVERIFY(!examples.isEmpty());
    for (const QString &example : examples) {
        const Invocation invocation(example.section(" <", 0, 0).split(' ').mid(1));
        QCOMPARE(invocation.complaint(), QString());
        int used = 0;
        const Command *command = findCommand(invocation.words(), &used);
        QVERIFY2(command, qPrintable(example));
        QCOMPARE(invocation.misplaced(*command), QString());
    }
}

QTEST_GUILESS_MAIN(TestKyboardctlPage)
#include "test_kyboardctl_page.moc"
