#include "layout.h"

#include <QRegularExpression>
#include <QTest>

/** kyboardctl's layout for terminals. */
class TestTerminalLayout : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesFitTheWidth_data();
    void linesFitTheWidth();
    void wrappingKeepsEveryWord();
    void statesHaveTheirColour_data();
    void statesHaveTheirColour();
    void coloursChangeNoText();
};

void TestTerminalLayout::linesFitTheWidth_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::newRow("short") << 20 << "a line\nanother\n"
                           << "a line\nanother\n";
    QTest::newRow("exactly") << 20 << "12345678 12345678901"
                             << "12345678 12345678901";
    QTest::newRow("one more") << 20 << "12345678 123456789012"
                              << "12345678\n    123456789012";
    QTest::newRow("value") << 20 << "Key  one, two, three, four"
                           << "Key  one, two,\n     three, four";
    QTest::newRow("indented value") << 24 << "  Key  one, two, three, four, five"
                                    << "  Key  one, two, three,\n       four, five";
    QTest::newRow("far value") << 20 << "A very long key  one, two, three"
                               << "A very long key \n    one, two, three";
    QTest::newRow("long word") << 20 << "x 1234567890123456789012345 y"
                               << "x 1234567890123456789012345\n    y";
    QTest::newRow("only a long word") << 20 << "1234567890123456789012345"
                                      << "1234567890123456789012345";
    QTest::newRow("no terminal") << 0 << QString(500, 'x') + " y" << QString(500, 'x') + " y";
    QTest::newRow("narrow") << 19 << "12345678 123456789012"
                            << "12345678 123456789012";
}

void TestTerminalLayout::linesFitTheWidth()
{
    QFETCH(int, width);
    QFETCH(QString, text);
    QTEST(wrapped(text, width), "expected");
}

void TestTerminalLayout::wrappingKeepsEveryWord()
{
    QString numbers = "AdjustementCoefficients  0";
    for (int number = 1; number < 296; ++number)
        numbers += ", " + QString::number(number * 7919);
    const QString words = QString(numbers).simplified();
    for (int width = 40; width < 200; ++width) {
        const QString made = wrapped(numbers, width);
        for (const QString &line : made.split('\n'))
            QVERIFY2(line.size() <= width, qPrintable(line));
        QCOMPARE(made.simplified(), words);
    }
}

void TestTerminalLayout::statesHaveTheirColour_data()
{
    QTest::addColumn<QString>("colour");
    const auto row = [](const char *text, const char *colour) { QTest::newRow(text) << colour; };
    row("BAT_RS1=ON", "31");
    row("BAT_RS1  BLINK_1HZ", "31");
    row("BAT_GS5=BLINK_3HZ", "32");
    row("POWER_Y=ON", "33");
    row("WIFI=ON", "36");
    row("CHARGER_OFF_UNKNOWN_BAT", "31");
    row("CHARGER_OFF_BAT_PRWT", "31");
    row("CHARGER_OFF_BAT_INF_20", "31");
    row("CHARGER_OFF_BAT_INF_40", "33");
    row("CHARGER_OFF_BAT_INF_100", "32");
    row("CHARGER_ON_NO_BAT", "31");
    row("CHARGER_ON_BAT_INF_20", "32");
    row("CHARGER_ON_BAT_FULL", "32");
    row("failure", "31");
    row("not available: no answer within 5 s", "31");
    row("daemon.left", "31");
    row("daemon.there", "32");
    row("online", "32");
    row("association", "33");
    row("not connected", "2");
    // Without a colour.
    row("BAT_RS1=OFF", "");
    row("WIFI", "");
    row("offer", "");
    row("one-off", "");
    row("online.example.org", "");
    row("user1", "");
}

void TestTerminalLayout::statesHaveTheirColour()
{
    QFETCH(QString, colour);
    const QString text = QTest::currentDataTag();
    const QString expected =
        colour.isEmpty() ? text : QStringLiteral("\033[%1m%2\033[0m").arg(colour, text);
    QCOMPARE(coloured(text), expected);
    QCOMPARE(coloured("x " + text + '\n'), "x " + expected + '\n');
}

void TestTerminalLayout::coloursChangeNoText()
{
    const QString text = "Battery  CHARGER_OFF_BAT_INF_20\nLEDs     BAT_RS1=ON, WIFI=BLINK_1HZ\n"
                         "Wi-Fi    not connected\n";
    QString made = coloured(text);
    QCOMPARE(made.count("\033["), 8);
    QCOMPARE(made.remove(QRegularExpression("\033\\[[0-9]+m")), text);
    QCOMPARE(alarming("x"), QStringLiteral("\033[31mx\033[0m"));
}

QTEST_GUILESS_MAIN(TestTerminalLayout)
#include "test_terminallayout.moc"
