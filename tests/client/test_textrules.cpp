#include "textrules.h"

#include <QTest>

/** The texts that kyboardctl accepts on its command line. */
class TestTextRules : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void namesAndKeysAreRecognised_data();
    void namesAndKeysAreRecognised();
    void wholeNumbersAreDigits();
    void controlCharactersAreEscaped();
};

void TestTextRules::namesAndKeysAreRecognised_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isName");
    QTest::addColumn<bool>("isListed");
    QTest::addColumn<bool>("isPhrase");
    QTest::addColumn<bool>("isKey");
    QTest::addColumn<bool>("isNumber");

    const auto row = [](const char *name, const QString &text, const QString &kinds) {
        QTest::newRow(name) << text << kinds.contains('n') << kinds.contains('l')
                            << kinds.contains('p') << kinds.contains('k') << kinds.contains('h');
    };
    row("empty", "", "");
    row("letter", "x", "nl");
    row("digit", "8", "nlh");
    row("four digits", "8aBf", "nlh");
    row("five digits", "08345", "nlk");
    row("no digit", "834g", "nl");
    row("sign", "-1", "nl");
    row("blank", " 834", "nl");
    row("seven characters", "seven c", "nl");
    row("eight characters", "eight ch", "nlpk");
    row("thirteen characters", "thirteen char", "nlpk");
    row("32 bytes", QString(32, 'x'), "nlpk");
    row("33 bytes", QString(33, 'x'), "pk");
    row("63 characters", QString(63, 'x'), "pk");
    row("64 characters", QString(64, 'x'), "");
    row("64 hexadecimal digits", QString(64, 'f'), "k");
    row("65 hexadecimal digits", QString(65, 'f'), "");
    row("16 letters of two bytes", QString(16, QChar(0xE9)), "nl");
    row("17 letters of two bytes", QString(17, QChar(0xE9)), "l");
    row("32 letters of three bytes", QString(32, QChar(0xFFFD)), "l");
    row("33 letters of three bytes", QString(33, QChar(0xFFFD)), "");
    row("no ASCII", QString("caf\u00e9 royal"), "nl");
    row("tilde", "~~~~~~~~", "nlpk");
    row("line feed", "abcdefgh\nchannel=3", "");
    row("carriage return", "abcdefgh\r", "");
    row("zero byte", QString("abcd") + QChar(0) + "efgh", "");
    row("escape", "\x1b[2Jabcdefgh", "");
    row("delete", "abcdefgh\x7f", "");
    row("next line", QString("abcdefgh") + QChar(0x85), "");
    row("line separator", QString("abcdefgh") + QChar(0x2028), "");
    row("paragraph separator", QString("abcdefgh") + QChar(0x2029), "");
    row("WEP of no ASCII", QString(5, QChar(0xE9)), "nl");
}

void TestTextRules::namesAndKeysAreRecognised()
{
    QFETCH(QString, text);
    QTEST(isNetworkName(text), "isName");
    QTEST(isListedNetworkName(text), "isListed");
    QTEST(isPassphrase(text), "isPhrase");
    QTEST(isNetworkKey(text), "isKey");
    QTEST(isHexadecimal16(text), "isNumber");
    QCOMPARE(isUserName(text), !text.isEmpty() && isFreeOfControls(text));
    QVERIFY(!isPrintableAscii(text) || isFreeOfControls(text));
    QVERIFY(!isUserName(text + QString(256 - text.size(), 'x')));
}

void TestTextRules::wholeNumbersAreDigits()
{
    for (const char *text : {"0", "5", "-1", "007", "4294967295"})
        QVERIFY2(isWholeNumber(text), text);
    for (const char *text : {"", "-", "+5", " 5", "5 ", "--5", "1.0", "1e3", "0x1", "5\n"})
        QVERIFY2(!isWholeNumber(text), text);
    QVERIFY(!isWholeNumber(QString(QChar(0x0665))));
}

void TestTextRules::controlCharactersAreEscaped()
{
    QCOMPARE(shown("caf\u00e9 \\ 'x'"), QString("caf\u00e9 \\ 'x'"));
    QCOMPARE(shown("a\n\x1b[2J\x7f"), QStringLiteral("a\\x0a\\x1b[2J\\x7f"));
    QCOMPARE(shown(QString(QChar(0x2028))), QStringLiteral("\\x2028"));
}

QTEST_GUILESS_MAIN(TestTextRules)
#include "test_textrules.moc"
