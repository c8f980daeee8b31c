#include "batterystatus.h"

#include <QTest>

#include <climits>

/** Tests batteryStatus(), with and without the charger. */
class TestBatteryStatus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutChargerTheChargeDecides_data();
    void withoutChargerTheChargeDecides();
    void withoutChargerTheMeterTypeAndTheFlagDoNotMatter();
    void withChargerTheAbsoluteValueOfANegativeChargeDecides_data();
    void withChargerTheAbsoluteValueOfANegativeChargeDecides();
    void withChargerTheFlagDecidesUnlessTheChargeIsNegative();
    void withChargerAMeterTypeExceptOneAndTwoMeansNoBattery();
};

namespace
{
constexpr int lowest = -300;
constexpr int highest = 300;

Battery::Status statusOf(bool chargerPresent, int meterType, bool isCharging, int charge)
{
    return batteryStatus(chargerPresent, meterType, {isCharging, charge});
}

void addRange(const char *name, int first, int last, Battery::Status status)
{
    QTest::newRow(name) << first << last << static_cast<int>(status);
}
} // namespace

void TestBatteryStatus::withoutChargerTheChargeDecides_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::addColumn<int>("status");
    addRange("smallest", INT_MIN, INT_MIN, Battery::CHARGER_OFF_BAT_PRWT);
    addRange("to 10", lowest, 10, Battery::CHARGER_OFF_BAT_PRWT);
    addRange("to 20", 11, 20, Battery::CHARGER_OFF_BAT_INF_20);
    addRange("to 40", 21, 40, Battery::CHARGER_OFF_BAT_INF_40);
    addRange("to 60", 41, 60, Battery::CHARGER_OFF_BAT_INF_60);
    addRange("to 80", 61, 80, Battery::CHARGER_OFF_BAT_INF_80);
    addRange("above", 81, highest, Battery::CHARGER_OFF_BAT_INF_100);
    addRange("greatest", INT_MAX, INT_MAX, Battery::CHARGER_OFF_BAT_INF_100);
}

void TestBatteryStatus::withoutChargerTheChargeDecides()
{
    QFETCH(int, first);
    QFETCH(int, last);
    QFETCH(int, status);
    for (qint64 charge = first; charge <= last; ++charge)
        QCOMPARE(static_cast<int>(statusOf(false, 1, false, static_cast<int>(charge))), status);
}

void TestBatteryStatus::withoutChargerTheMeterTypeAndTheFlagDoNotMatter()
{
    for (int charge = lowest; charge <= highest; ++charge) {
        for (int type = 0; type <= 4; ++type) {
            for (const bool isCharging : {false, true})
                QCOMPARE(statusOf(false, type, isCharging, charge),
                         statusOf(false, 1, false, charge));
        }
    }
}

void TestBatteryStatus::withChargerTheAbsoluteValueOfANegativeChargeDecides_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::addColumn<int>("status");
    addRange("smallest", INT_MIN, INT_MIN, Battery::CHARGER_OFF_UNKNOWN_BAT);
    addRange("more than full", lowest, -101, Battery::CHARGER_OFF_UNKNOWN_BAT);
    addRange("to 100", -100, -81, Battery::CHARGER_ON_BAT_INF_100);
    addRange("to 80", -80, -61, Battery::CHARGER_ON_BAT_INF_80);
    addRange("to 60", -60, -41, Battery::CHARGER_ON_BAT_INF_60);
    addRange("to 40", -40, -21, Battery::CHARGER_ON_BAT_INF_40);
    addRange("to 20", -20, -1, Battery::CHARGER_ON_BAT_INF_20);
}

void TestBatteryStatus::withChargerTheAbsoluteValueOfANegativeChargeDecides()
{
    QFETCH(int, first);
    QFETCH(int, last);
    QFETCH(int, status);
    for (int charge = first; charge <= last; ++charge) {
        for (const int type : {1, 2}) {
            for (const bool isCharging : {false, true})
                QCOMPARE(static_cast<int>(statusOf(true, type, isCharging, charge)), status);
        }
    }
}

void TestBatteryStatus::withChargerTheFlagDecidesUnlessTheChargeIsNegative()
{
    QVector<int> charges = {INT_MAX};
    for (int charge = 0; charge <= highest; ++charge)
        charges << charge;
    for (const int charge : charges) {
        for (const int type : {1, 2}) {
            QCOMPARE(statusOf(true, type, false, charge), Battery::CHARGER_ON_BAT_FULL);
            QCOMPARE(statusOf(true, type, true, charge), Battery::CHARGER_ON_BAT_INF_20);
        }
    }
}

void TestBatteryStatus::withChargerAMeterTypeExceptOneAndTwoMeansNoBattery()
{
    QVector<int> charges = {INT_MIN, INT_MAX};
    for (int charge = lowest; charge <= highest; ++charge)
        charges << charge;
    for (const int charge : charges) {
        for (const int type : {0, 3, 4, -1, INT_MIN, INT_MAX}) {
            for (const bool isCharging : {false, true})
                QCOMPARE(statusOf(true, type, isCharging, charge), Battery::CHARGER_ON_NO_BAT);
        }
    }
}

QTEST_APPLESS_MAIN(TestBatteryStatus)
#include "test_batterystatus.moc"
