#include "brightnesslevels.h"

#include <QTest>

#include <cmath>
#include <limits>

Q_DECLARE_METATYPE(BrightnessBounds)

/** Levels of the ambient light and the bands around them. */
class TestBrightnessLevels : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aLuxValueHasItsLevel_data();
    void aLuxValueHasItsLevel();
    void aLuxValueThatIsNotFiniteHasALevel_data();
    void aLuxValueThatIsNotFiniteHasALevel();
    void aTableOutOfOrderStillGivesALevel_data();
    void aTableOutOfOrderStillGivesALevel();

    void aBandReachesFromTheBoundBelowToTheOneAbove_data();
    void aBandReachesFromTheBoundBelowToTheOneAbove();
    void aBandOutOfOrderIsRefused_data();
    void aBandOutOfOrderIsRefused();
    void anyTableGivesAValidLevelAndAValidBandOrNone();

    void theTimerIsCutToOneEvenByte_data();
    void theTimerIsCutToOneEvenByte();
};

namespace
{
const BrightnessBounds factory = {
    {0, 10, 15, 25, 50, 75, 100, 150, 175, 200, 250, 300, 350, 400, 450, 500, 1000, 10000}};

BrightnessBounds allAt(int lux)
{
    BrightnessBounds bounds;
    for (int &level : bounds.level)
        level = lux;
    return bounds;
}

BrightnessBounds factoryWith(int level, int lux)
{
    BrightnessBounds bounds = factory;
    bounds.level[level] = lux;
    return bounds;
}

BrightnessBounds descending()
{
    BrightnessBounds bounds;
    for (int level = 0; level < 18; ++level)
        bounds.level[level] = factory.level[17 - level];
    return bounds;
}
} // namespace

void TestBrightnessLevels::aLuxValueHasItsLevel_data()
{
    QTest::addColumn<double>("lux");
    QTest::addColumn<int>("level");

    QTest::newRow("failed reading") << -1.0 << 1;
    QTest::newRow("dark") << 0.0 << 1;
    QTest::newRow("at level 1") << 10.0 << 1;
    QTest::newRow("just above level 1") << 10.01 << 2;
    QTest::newRow("within level 2") << 12.0 << 2;
    QTest::newRow("at level 2") << 15.0 << 2;
    QTest::newRow("at level 3") << 25.0 << 3;
    QTest::newRow("at level 4") << 50.0 << 4;
    QTest::newRow("at level 5") << 75.0 << 5;
    QTest::newRow("at level 6") << 100.0 << 6;
    QTest::newRow("within level 7") << 120.0 << 7;
    QTest::newRow("at level 7") << 150.0 << 7;
    QTest::newRow("at level 8") << 175.0 << 8;
    QTest::newRow("at level 9") << 200.0 << 9;
    QTest::newRow("at level 10") << 250.0 << 10;
    QTest::newRow("at level 11") << 300.0 << 11;
    QTest::newRow("at level 12") << 350.0 << 12;
    QTest::newRow("at level 13") << 400.0 << 13;
    QTest::newRow("at level 14") << 450.0 << 14;
    QTest::newRow("at level 15") << 500.0 << 15;
    QTest::newRow("just above level 15") << 500.5 << 16;
    QTest::newRow("at level 16") << 1000.0 << 16;
    QTest::newRow("at the outermost bound") << 10000.0 << 16;
    QTest::newRow("above everything") << 20000.0 << 16;
}

void TestBrightnessLevels::aLuxValueHasItsLevel()
{
    QFETCH(double, lux);
    QFETCH(int, level);
    QCOMPARE(brightnessLevel(lux, factory), level);
}

void TestBrightnessLevels::aLuxValueThatIsNotFiniteHasALevel_data()
{
    QTest::addColumn<double>("lux");
    QTest::addColumn<int>("level");

    QTest::newRow("not a number") << std::nan("") << 16;
    QTest::newRow("infinitely bright") << std::numeric_limits<double>::infinity() << 16;
    QTest::newRow("infinitely dark") << -std::numeric_limits<double>::infinity() << 1;
}

void TestBrightnessLevels::aLuxValueThatIsNotFiniteHasALevel()
{
    QFETCH(double, lux);
    QFETCH(int, level);
    QCOMPARE(brightnessLevel(lux, factory), level);
}

void TestBrightnessLevels::aTableOutOfOrderStillGivesALevel_data()
{
    QTest::addColumn<BrightnessBounds>("bounds");
    QTest::addColumn<double>("lux");
    QTest::addColumn<int>("level");

    QTest::newRow("equal, dark") << allAt(0) << 0.0 << 1;
    QTest::newRow("equal, bright") << allAt(0) << 1.0 << 16;
    QTest::newRow("descending, below the first") << descending() << 999.0 << 1;
    QTest::newRow("descending, above the first") << descending() << 1000.5 << 16;
    QTest::newRow("a too high entry hides those above it") << factoryWith(2, 30000) << 20000.0 << 2;
    QTest::newRow("a too low entry is skipped") << factoryWith(3, 5) << 20.0 << 4;
    QTest::newRow("the lowest bound is no level") << factoryWith(0, 30000) << 5.0 << 1;
    QTest::newRow("the highest bound is no level") << factoryWith(17, 0) << 20000.0 << 16;
    QTest::newRow("all negative") << allAt(INT_MIN) << -1.0 << 16;
    QTest::newRow("all huge") << allAt(INT_MAX) << 20000.0 << 1;
}

void TestBrightnessLevels::aTableOutOfOrderStillGivesALevel()
{
    QFETCH(BrightnessBounds, bounds);
    QFETCH(double, lux);
    QFETCH(int, level);
    QCOMPARE(brightnessLevel(lux, bounds), level);
}

void TestBrightnessLevels::aBandReachesFromTheBoundBelowToTheOneAbove_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<int>("low");
    QTest::addColumn<int>("high");

    QTest::newRow("1") << 1 << 0 << 15;
    QTest::newRow("2") << 2 << 10 << 25;
    QTest::newRow("3") << 3 << 15 << 50;
    QTest::newRow("4") << 4 << 25 << 75;
    QTest::newRow("5") << 5 << 50 << 100;
    QTest::newRow("6") << 6 << 75 << 150;
    QTest::newRow("7") << 7 << 100 << 175;
    QTest::newRow("8") << 8 << 150 << 200;
    QTest::newRow("9") << 9 << 175 << 250;
    QTest::newRow("10") << 10 << 200 << 300;
    QTest::newRow("11") << 11 << 250 << 350;
    QTest::newRow("12") << 12 << 300 << 400;
    QTest::newRow("13") << 13 << 350 << 450;
    QTest::newRow("14") << 14 << 400 << 500;
    QTest::newRow("15") << 15 << 450 << 1000;
    QTest::newRow("16") << 16 << 500 << 10000;
}

void TestBrightnessLevels::aBandReachesFromTheBoundBelowToTheOneAbove()
{
    QFETCH(int, level);
    const auto band = brightnessBand(level, factory);
    QVERIFY(band.has_value());
    QTEST(band->low, "low");
    QTEST(band->high, "high");
}

void TestBrightnessLevels::aBandOutOfOrderIsRefused_data()
{
    QTest::addColumn<BrightnessBounds>("bounds");
    QTest::addColumn<int>("level");
    QTest::addColumn<bool>("isBand");

    const bool refused = false;
    const bool accepted = true;
    QTest::newRow("upside down") << descending() << 8 << refused;
    QTest::newRow("upside down by one lux") << factoryWith(3, 9) << 2 << refused;
    QTest::newRow("equal bounds") << factoryWith(3, 10) << 2 << accepted;
    QTest::newRow("the level itself does not count") << factoryWith(2, -5) << 2 << accepted;
    QTest::newRow("negative lower bound") << factoryWith(0, -1) << 1 << refused;
    QTest::newRow("both bounds negative") << allAt(-7) << 5 << refused;
    QTest::newRow("negative upper bound") << factoryWith(17, -1) << 16 << refused;
    QTest::newRow("all zero") << allAt(0) << 16 << accepted;
}

void TestBrightnessLevels::aBandOutOfOrderIsRefused()
{
    QFETCH(BrightnessBounds, bounds);
    QFETCH(int, level);
    QTEST(brightnessBand(level, bounds).has_value(), "isBand");
}

void TestBrightnessLevels::anyTableGivesAValidLevelAndAValidBandOrNone()
{
    const int values[] = {INT_MIN, -1, 0, 1, 300, INT_MAX};
    for (int changed = 0; changed < 18; ++changed) {
        for (const int value : values) {
            const BrightnessBounds bounds = factoryWith(changed, value);
            for (const double lux : {-1.0, 0.0, 12.0, 310.0, 20000.0, 1e30}) {
                const int level = brightnessLevel(lux, bounds);
                QVERIFY(level >= 1 && level <= 16);
                if (const auto band = brightnessBand(level, bounds))
                    QVERIFY(band->low >= 0 && band->low <= band->high);
            }
        }
    }
}

void TestBrightnessLevels::theTimerIsCutToOneEvenByte_data()
{
    QTest::addColumn<uint>("timer");
    QTest::addColumn<int>("byte");

    QTest::newRow("none") << 0u << 0x00;
    QTest::newRow("factory setting") << 5u << 0x32;
    QTest::newRow("the largest that fits") << 25u << 0xFA;
    QTest::newRow("truncated") << 26u << 0x04;
    QTest::newRow("30") << 30u << 0x2C;
    QTest::newRow("its tenfold is a multiple of 256") << 128u << 0x00;
    QTest::newRow("largest") << UINT_MAX << 0xF6;
}

void TestBrightnessLevels::theTimerIsCutToOneEvenByte()
{
    QFETCH(uint, timer);
    QTEST(int(thresholdTimerByte(timer)), "byte");
}

QTEST_GUILESS_MAIN(TestBrightnessLevels)
#include "test_brightnesslevels.moc"
