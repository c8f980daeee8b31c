#include "wifitrace.h"

#include <QTest>

/** The text of the Wi-Fi station's trace. */
class TestWifiTrace : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aRecordIsFiveLines();
    void aNetworkThatWasNotNamedIsAnEmptyLine();
    void namesOutsideAsciiAreUtf8();
};

void TestWifiTrace::aRecordIsFiveLines()
{
    QCOMPARE(wifiTraceLines({"connect", "OP:connect", "idle", "Lab"}),
             QByteArray("----------------------------\nconnect\nOP:connect\nidle\nLab\n"));
}

void TestWifiTrace::aNetworkThatWasNotNamedIsAnEmptyLine()
{
    QCOMPARE(wifiTraceLines({"scan", "OP:scan", "idle", QString()}),
             QByteArray("----------------------------\nscan\nOP:scan\nidle\n\n"));
}

void TestWifiTrace::namesOutsideAsciiAreUtf8()
{
    QVERIFY(wifiTraceLines({"connect", "OP:connect", "idle", QStringLiteral("caf\u00e9")})
                .endsWith("\ncaf\xc3\xa9\n"));
}

QTEST_GUILESS_MAIN(TestWifiTrace)
#include "test_wifitrace.moc"
