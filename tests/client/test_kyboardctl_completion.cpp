#include "commands.h"
#include "terminalprogram.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

/** The completion of kyboardctl in bash and zsh. */
class TestKyboardctlCompletion : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void bashCompletesTheNextWord_data();
    void bashCompletesTheNextWord();
    void everyCommandIsOffered();
    void aKeyPressCompletes();
    void aKeyPressCompletesInZsh();
    void zshFindsItByItsName();

private:
    static QStringList replies(const QStringList &words);
};

void TestKyboardctlCompletion::initTestCase()
{
    qputenv("TERM", "dumb");
    qputenv("PATH", QByteArray(PROGRAMS ":") + qgetenv("PATH"));
}

/** Bash's completions for the last of the words. */
QStringList TestKyboardctlCompletion::replies(const QStringList &words)
{
    QProcess bash;
    bash.start("bash", QStringList{"--norc", "-c",
                                   ". " COMPLETION "; COMP_WORDS=(kyboardctl \"$@\"); "
                                   "COMP_CWORD=$#; _kyboardctl; "
                                   "for reply in \"${COMPREPLY[@]}\"; do echo \"$reply\"; done",
                                   "bash"} +
                           words);
    if (!bash.waitForFinished() || bash.exitCode() != 0 || !bash.readAllStandardError().isEmpty())
        return {QStringLiteral("bash fails")};
    QStringList lines = QString::fromUtf8(bash.readAllStandardOutput()).split('\n');
    lines.removeLast();
    return lines;
}

void TestKyboardctlCompletion::bashCompletesTheNextWord_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("group") << QStringList{"us"} << QStringList{"user"};
    QTest::newRow("verb") << QStringList{"user", ""} << QStringList{"get", "set", "reset"};
    QTest::newRow("argument") << QStringList{"led", "set", "WI"} << QStringList{"WIFI"};
    QTest::newRow("option") << QStringList{"--js"} << QStringList{"--json"};
    QTest::newRow("key") << QStringList{"wifi", "set-ipv4", "Meth"} << QStringList{"Method="};
    QTest::newRow("value") << QStringList{"wifi", "set-ipv4", "Method", "="}
                           << QStringList{"dhcp", "manual", "off"};
    QTest::newRow("begun value") << QStringList{"wifi", "set-ipv4", "Method", "=", "m"}
                                 << QStringList{"manual"};
    QTest::newRow("key after a value")
        << QStringList{"wifi", "set-ipv4", "Method", "=", "manual", "Addr"}
        << QStringList{"Address="};
    QTest::newRow("nothing") << QStringList{"user", "get", ""} << QStringList();
    QTest::newRow("unknown") << QStringList{"lights", ""} << QStringList();
}

void TestKyboardctlCompletion::bashCompletesTheNextWord()
{
    QFETCH(QStringList, words);
    QFETCH(QStringList, expected);
    QCOMPARE(replies(words), expected);
}

void TestKyboardctlCompletion::everyCommandIsOffered()
{
    QMap<QString, QStringList> verbs;
    QStringList groups;
    for (const QVector<Command> *table : {&ownCommands(), &commands()}) {
        for (const Command &command : *table) {
            const QStringList words = command.words.split(' ');
            groups << words.first();
            if (words.size() > 1)
                verbs[words.first()] << words.at(1);
        }
    }
    groups.removeDuplicates();
    QCOMPARE(replies({""}), groups);
    for (auto group = verbs.constBegin(); group != verbs.constEnd(); ++group)
        QCOMPARE(replies({group.key(), ""}), group.value());
}

void TestKyboardctlCompletion::aKeyPressCompletes()
{
    TerminalProgram bash("bash", {"--norc", "--noprofile", "-i"});
    bash.type("PS1='ready> '; . " COMPLETION "\n");
    QVERIFY(bash.shows("\nready> "));
    bash.type("kyboardctl wi\t");
    QVERIFY2(bash.shows("kyboardctl wifi "), bash.shown().constData());
    bash.type("set-i\t");
    QVERIFY2(bash.shows("kyboardctl wifi set-ipv4 "), bash.shown().constData());
    bash.type("Meth\t");
    QVERIFY2(bash.shows("set-ipv4 Method="), bash.shown().constData());
    bash.type("m\t");
    QVERIFY2(bash.shows("set-ipv4 Method=manual "), bash.shown().constData());
}

void TestKyboardctlCompletion::aKeyPressCompletesInZsh()
{
    qputenv("TERM", "xterm");
    TerminalProgram zsh("zsh", {"-f", "-i"});
    zsh.type("PROMPT='%%rea''dy '; autoload -Uz compinit; compinit -u -D; . " ZSH_COMPLETION "\n");
    QVERIFY2(zsh.shows("ready "), zsh.shown().constData());
    // Wait until each completion is shown before the next keys.
    zsh.type("kyboardctl wi\t");
    QVERIFY2(zsh.shows("kyboardctl wifi"), zsh.shown().constData());
    zsh.type("set-i\t");
    QVERIFY2(zsh.shows("set-ipv4"), zsh.shown().constData());
    zsh.type("Meth\t");
    QVERIFY2(zsh.shows("Method="), zsh.shown().constData());
    zsh.type("m\t");
    QVERIFY2(zsh.shows("manual"), zsh.shown().constData());
    zsh.type("Addr\t");
    QVERIFY2(zsh.shows("Address="), zsh.shown().constData());
    // Ctrl-A and "print -r --" make the shell print the line as a command would get it.
    zsh.type("10.0.0.2\x01print -r -- \n");
    QVERIFY2(zsh.shows("\nkyboardctl wifi set-ipv4 Method=manual Address=10.0.0.2\r\n"),
             zsh.shown().constData());
}

/** The completion is a file of its own in zsh's function path, as the package installs it. */
void TestKyboardctlCompletion::zshFindsItByItsName()
{
    qputenv("TERM", "xterm");
    QTemporaryDir functions;
    QVERIFY(QFile::link(ZSH_COMPLETION, functions.filePath("_kyboardctl")));
    TerminalProgram zsh("zsh", {"-f", "-i"});
    zsh.type("PROMPT='%%rea''dy '; fpath=(" + functions.path().toUtf8() +
             " $fpath); autoload -Uz compinit; compinit -u -D\n");
    QVERIFY2(zsh.shows("ready "), zsh.shown().constData());
    zsh.type("kyboardctl eep\t");
    QVERIFY2(zsh.shows("kyboardctl eeprom"), zsh.shown().constData());
    zsh.type("du\t");
    QVERIFY2(zsh.shows("dump"), zsh.shown().constData());
    zsh.type("\x01print -r -- \n");
    QVERIFY2(zsh.shows("\nkyboardctl eeprom dump\r\n"), zsh.shown().constData());
}

QTEST_GUILESS_MAIN(TestKyboardctlCompletion)
#include "test_kyboardctl_completion.moc"
