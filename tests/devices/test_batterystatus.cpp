#include "batterystatus.h"

#include <QTest>

#include <climits>

/** The battery status that a measurement stands for. */
class TestBatteryStatus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutChargerTheChargeDecides_data();
    void withoutChargerTheChargeDecides();
    void withoutChargerMeterTypeAndFlagDoNotMatter();
    void aNegativeChargeWithChargerIsThePercentage_data();
    void aNegativeChargeWithChargerIsThePercentage();
    void anyOtherChargeWithChargerLeavesItToTheFlag();
    void otherMetersWithChargerTellOfNoBattery();
};

namespace
{
const int lowest = -300;
const int highest = 300;

KyAlimentation::BatteryStatus statusOf(bool chargerPresent, int meterType, int flag, int charge)
{
    const cmeter_data measurement = {static_cast<unsigned char>(flag), charge, 7400};
    return batteryStatus(chargerPresent, meterType, measurement);
}

void addRange(const char *name, int first, int last, KyAlimentation::BatteryStatus status)
{
    QTest::newRow(name) << first << last << static_cast<int>(status);
}
} // namespace

void TestBatteryStatus::withoutChargerTheChargeDecides_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::addColumn<int>("status");
    addRange("smallest", INT_MIN, INT_MIN, KyAlimentation::CHARGER_OFF_BAT_PRWT);
    addRange("to 10", lowest, 10, KyAlimentation::CHARGER_OFF_BAT_PRWT);
    addRange("to 20", 11, 20, KyAlimentation::CHARGER_OFF_BAT_INF_20);
    addRange("to 40", 21, 40, KyAlimentation::CHARGER_OFF_BAT_INF_40);
    addRange("to 60", 41, 60, KyAlimentation::CHARGER_OFF_BAT_INF_60);
    addRange("to 80", 61, 80, KyAlimentation::CHARGER_OFF_BAT_INF_80);
    addRange("above", 81, highest, KyAlimentation::CHARGER_OFF_BAT_INF_100);
    addRange("greatest", INT_MAX, INT_MAX, KyAlimentation::CHARGER_OFF_BAT_INF_100);
}

void TestBatteryStatus::withoutChargerTheChargeDecides()
{
    QFETCH(int, first);
    QFETCH(int, last);
    QFETCH(int, status);
    for (qint64 charge = first; charge <= last; ++charge)
        QCOMPARE(static_cast<int>(statusOf(false, 1, 0, static_cast<int>(charge))), status);
}

void TestBatteryStatus::withoutChargerMeterTypeAndFlagDoNotMatter()
{
    for (int charge = lowest; charge <= highest; ++charge) {
        for (int type = 0; type <= 4; ++type) {
            for (const int flag : {0, 1, 255})
                QCOMPARE(statusOf(false, type, flag, charge), statusOf(false, 1, 0, charge));
        }
    }
}

void TestBatteryStatus::aNegativeChargeWithChargerIsThePercentage_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::addColumn<int>("status");
    addRange("smallest", INT_MIN, INT_MIN, KyAlimentation::CHARGER_OFF_UNKNOWN_BAT);
    addRange("more than full", lowest, -101, KyAlimentation::CHARGER_OFF_UNKNOWN_BAT);
    addRange("to 100", -100, -81, KyAlimentation::CHARGER_ON_BAT_INF_100);
    addRange("to 80", -80, -61, KyAlimentation::CHARGER_ON_BAT_INF_80);
    addRange("to 60", -60, -41, KyAlimentation::CHARGER_ON_BAT_INF_60);
    addRange("to 40", -40, -21, KyAlimentation::CHARGER_ON_BAT_INF_40);
    addRange("to 20", -20, -1, KyAlimentation::CHARGER_ON_BAT_INF_20);
}

void TestBatteryStatus::aNegativeChargeWithChargerIsThePercentage()
{
    QFETCH(int, first);
    QFETCH(int, last);
    QFETCH(int, status);
    for (int charge = first; charge <= last; ++charge) {
        for (const int type : {1, 2}) {
            for (const int flag : {0, 1, 255})
                QCOMPARE(static_cast<int>(statusOf(true, type, flag, charge)), status);
        }
    }
}

void TestBatteryStatus::anyOtherChargeWithChargerLeavesItToTheFlag()
{
    QVector<int> charges = {INT_MAX};
    for (int charge = 0; charge <= highest; ++charge)
        charges << charge;
    for (const int charge : charges) {
        for (const int type : {1, 2}) {
            QCOMPARE(statusOf(true, type, 0, charge), KyAlimentation::CHARGER_ON_BAT_FULL);
            QCOMPARE(statusOf(true, type, 1, charge), KyAlimentation::CHARGER_ON_BAT_INF_20);
            QCOMPARE(statusOf(true, type, 255, charge), KyAlimentation::CHARGER_ON_BAT_INF_20);
        }
    }
}

void TestBatteryStatus::otherMetersWithChargerTellOfNoBattery()
{
    QVector<int> charges = {INT_MIN, INT_MAX};
    for (int charge = lowest; charge <= highest; ++charge)
        charges << charge;
    for (const int charge : charges) {
        for (const int type : {0, 3, 4, -1, INT_MIN, INT_MAX}) {
            for (const int flag : {0, 1, 255})
                QCOMPARE(statusOf(true, type, flag, charge), KyAlimentation::CHARGER_ON_NO_BAT);
        }
    }
}

QTEST_APPLESS_MAIN(TestBatteryStatus)
#include "test_batterystatus.moc"
