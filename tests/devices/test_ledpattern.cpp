#include "enumnames.h"
#include "ledpattern.h"

#include <QTest>

/** The LEDs for each battery status, and the order in which they are set. */
class TestLedPattern : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theGaugeIsSwitchedOffFirst();
    void theGaugeThenShowsTheStatus_data();
    void theGaugeThenShowsTheStatus();
    void thePowerButtonIsSwitchedOffFirst();
    void thePowerButtonThenShowsTheStatus_data();
    void thePowerButtonThenShowsTheStatus();
};

namespace
{
const int statuses = registeredEnum(Battery::staticMetaObject, "Status").keyCount();

/** Formats the settings in order, for example "RS1=0 GS1=3". */
QString render(const QVector<LedSetting> &settings)
{
    const QMap<int, QString> names = {{0, "RS1"}, {2, "GS1"},  {4, "GS2"}, {6, "GS3"},
                                      {8, "GS4"}, {10, "GS5"}, {22, "Y"},  {24, "G"}};
    const QStringList states = {"OFF", "1HZ", "3HZ", "ON", "UNKNOWN"};
    QStringList texts;
    for (const LedSetting &setting : settings)
        texts << names.value(setting.led) + QLatin1Char('=') + states.value(setting.state);
    return texts.join(QLatin1Char(' '));
}

Battery::Status toStatus(int value)
{
    return static_cast<Battery::Status>(value);
}

void addRow(const char *name, int status, const char *settings)
{
    QTest::newRow(name) << status << QString::fromLatin1(settings);
}
} // namespace

void TestLedPattern::theGaugeIsSwitchedOffFirst()
{
    for (int status = 0; status < statuses; ++status)
        QCOMPARE(render(batteryGaugePattern(toStatus(status)).mid(0, 6)),
                 QStringLiteral("RS1=OFF GS1=OFF GS2=OFF GS3=OFF GS4=OFF GS5=OFF"));
}

void TestLedPattern::theGaugeThenShowsTheStatus_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("settings");
    addRow("CHARGER_OFF_UNKNOWN_BAT", 0, "RS1=3HZ");
    addRow("CHARGER_ON_NO_BAT", 1, "RS1=1HZ");
    addRow("CHARGER_OFF_BAT_PRWT", 2, "RS1=1HZ");
    addRow("CHARGER_OFF_BAT_INF_20", 3, "RS1=ON");
    addRow("CHARGER_OFF_BAT_INF_40", 4, "GS2=ON GS1=ON");
    addRow("CHARGER_OFF_BAT_INF_60", 5, "GS3=ON GS2=ON GS1=ON");
    addRow("CHARGER_OFF_BAT_INF_80", 6, "GS4=ON GS3=ON GS2=ON GS1=ON");
    addRow("CHARGER_OFF_BAT_INF_100", 7, "GS5=ON GS4=ON GS3=ON GS2=ON GS1=ON");
    addRow("CHARGER_ON_BAT_INF_20", 8, "GS1=1HZ");
    addRow("CHARGER_ON_BAT_INF_40", 9, "GS1=ON GS2=1HZ");
    addRow("CHARGER_ON_BAT_INF_60", 10, "GS2=ON GS1=ON GS3=1HZ");
    addRow("CHARGER_ON_BAT_INF_80", 11, "GS3=ON GS2=ON GS1=ON GS4=1HZ");
    addRow("CHARGER_ON_BAT_INF_100", 12, "GS4=ON GS3=ON GS2=ON GS1=ON GS5=1HZ");
    addRow("CHARGER_ON_BAT_FULL", 13, "GS5=ON GS4=ON GS3=ON GS2=ON GS1=ON");
}

void TestLedPattern::theGaugeThenShowsTheStatus()
{
    QFETCH(int, status);
    QFETCH(QString, settings);
    QCOMPARE(render(batteryGaugePattern(toStatus(status)).mid(6)), settings);
}

void TestLedPattern::thePowerButtonIsSwitchedOffFirst()
{
    for (int status = 0; status < statuses; ++status)
        QCOMPARE(render(powerButtonPattern(toStatus(status)).mid(0, 2)),
                 QStringLiteral("G=OFF Y=OFF"));
}

void TestLedPattern::thePowerButtonThenShowsTheStatus_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("settings");
    addRow("CHARGER_OFF_UNKNOWN_BAT", 0, "");
    addRow("CHARGER_ON_NO_BAT", 1, "");
    addRow("CHARGER_OFF_BAT_PRWT", 2, "Y=1HZ");
    addRow("CHARGER_OFF_BAT_INF_20", 3, "Y=ON");
    addRow("CHARGER_OFF_BAT_INF_40", 4, "Y=ON");
    addRow("CHARGER_OFF_BAT_INF_60", 5, "Y=ON");
    addRow("CHARGER_OFF_BAT_INF_80", 6, "Y=ON");
    addRow("CHARGER_OFF_BAT_INF_100", 7, "Y=ON");
    addRow("CHARGER_ON_BAT_INF_20", 8, "G=1HZ");
    addRow("CHARGER_ON_BAT_INF_40", 9, "G=1HZ");
    addRow("CHARGER_ON_BAT_INF_60", 10, "G=1HZ");
    addRow("CHARGER_ON_BAT_INF_80", 11, "G=1HZ");
    addRow("CHARGER_ON_BAT_INF_100", 12, "G=1HZ");
    addRow("CHARGER_ON_BAT_FULL", 13, "G=ON");
}

void TestLedPattern::thePowerButtonThenShowsTheStatus()
{
    QFETCH(int, status);
    QFETCH(QString, settings);
    QCOMPARE(render(powerButtonPattern(toStatus(status)).mid(2)), settings);
}

QTEST_APPLESS_MAIN(TestLedPattern)
#include "test_ledpattern.moc"
