#include "backlightsteps.h"

#include <QTest>

Q_DECLARE_METATYPE(BacklightSteps)

/** Steps of the screen backlight. */
class TestBacklightSteps : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aPercentageHasItsStep_data();
    void aPercentageHasItsStep();
    void aTableOutOfOrderStillGivesAStep_data();
    void aTableOutOfOrderStillGivesAStep();

    void aStepIsCheckedAndFoundInTheTable_data();
    void aStepIsCheckedAndFoundInTheTable();
    void aRequestedStepHasItsPercentage();
    void aPercentageIsFromZeroToHundred();
    void eachLevelOfTheLightHasItsStep_data();
    void eachLevelOfTheLightHasItsStep();
};

namespace
{
const BacklightSteps factory = {{15, 20, 25, 30, 35, 40, 45, 50, 60, 70, 80, 90, 100}};

BacklightSteps allAt(int percentage)
{
    BacklightSteps steps;
    for (int &step : steps.percentage)
        step = percentage;
    return steps;
}

BacklightSteps factoryWith(int step, int percentage)
{
    BacklightSteps steps = factory;
    steps.percentage[step] = percentage;
    return steps;
}

BacklightSteps descending()
{
    BacklightSteps steps;
    for (int step = 0; step < 13; ++step)
        steps.percentage[step] = factory.percentage[12 - step];
    return steps;
}
} // namespace

void TestBacklightSteps::aPercentageHasItsStep_data()
{
    QTest::addColumn<int>("percentage");
    QTest::addColumn<int>("step");

    QTest::newRow("off") << 0 << 1;
    QTest::newRow("at step 0, which is never returned") << 15 << 1;
    QTest::newRow("at step 1") << 20 << 1;
    QTest::newRow("above step 1") << 21 << 2;
    QTest::newRow("at step 2") << 25 << 2;
    QTest::newRow("at step 3") << 30 << 3;
    QTest::newRow("at step 4") << 35 << 4;
    QTest::newRow("at step 5") << 40 << 5;
    QTest::newRow("at step 6") << 45 << 6;
    QTest::newRow("at step 7") << 50 << 7;
    QTest::newRow("within step 8") << 55 << 8;
    QTest::newRow("at step 8") << 60 << 8;
    QTest::newRow("at step 9") << 70 << 9;
    QTest::newRow("at step 10") << 80 << 10;
    QTest::newRow("at step 11") << 90 << 11;
    QTest::newRow("at step 12") << 100 << 12;
    QTest::newRow("above the table") << 101 << 15;
    QTest::newRow("nonsense, high") << INT_MAX << 15;
    QTest::newRow("nonsense, low") << INT_MIN << 1;
}

void TestBacklightSteps::aPercentageHasItsStep()
{
    QFETCH(int, percentage);
    QFETCH(int, step);
    QCOMPARE(backlightStep(percentage, factory), step);
}

void TestBacklightSteps::aTableOutOfOrderStillGivesAStep_data()
{
    QTest::addColumn<BacklightSteps>("steps");
    QTest::addColumn<int>("percentage");
    QTest::addColumn<int>("step");

    QTest::newRow("descending, the first above") << descending() << 55 << 1;
    QTest::newRow("descending, all below") << descending() << 95 << 15;
    QTest::newRow("all zero, off") << allAt(0) << 0 << 1;
    QTest::newRow("all zero, on") << allAt(0) << 1 << 15;
    QTest::newRow("a too high entry hides those above it") << factoryWith(3, 500) << 100 << 3;
    QTest::newRow("a too low entry is skipped") << factoryWith(3, 5) << 28 << 4;
    QTest::newRow("entry 0 is not searched") << factoryWith(0, 100) << 95 << 12;
    QTest::newRow("a table that ends below 100") << factoryWith(12, 95) << 96 << 15;
    QTest::newRow("all negative") << allAt(INT_MIN) << 0 << 15;
    QTest::newRow("all huge") << allAt(INT_MAX) << 100 << 1;
}

void TestBacklightSteps::aTableOutOfOrderStillGivesAStep()
{
    QFETCH(BacklightSteps, steps);
    QFETCH(int, percentage);
    QFETCH(int, step);
    QCOMPARE(backlightStep(percentage, steps), step);
}

void TestBacklightSteps::aStepIsCheckedAndFoundInTheTable_data()
{
    QTest::addColumn<int>("step");
    QTest::addColumn<bool>("canBeAskedFor");
    QTest::addColumn<bool>("hasEntry");
    QTest::addColumn<int>("entry");

    QTest::newRow("lowest int") << INT_MIN << false << false << -1;
    QTest::newRow("-1") << -1 << false << false << -1;
    for (int step = 0; step <= 12; ++step)
        QTest::newRow(qPrintable(QString::number(step))) << step << true << true << step;
    QTest::newRow("13") << 13 << true << false << 12;
    QTest::newRow("14") << 14 << false << false << 12;
    QTest::newRow("15") << 15 << false << false << 12;
    QTest::newRow("16") << 16 << false << false << 12;
    QTest::newRow("highest int") << INT_MAX << false << false << 12;
}

void TestBacklightSteps::aStepIsCheckedAndFoundInTheTable()
{
    QFETCH(int, step);
    QFETCH(int, entry);
    QTEST(isBacklightStep(step), "canBeAskedFor");
    QTEST(hasBacklightEntry(step), "hasEntry");
    if (step >= 0)
        QCOMPARE(backlightEntry(step), entry);
}

void TestBacklightSteps::aRequestedStepHasItsPercentage()
{
    QCOMPARE(requestedPercentage(0, factory).value_or(-1), 15);
    QCOMPARE(requestedPercentage(12, factory).value_or(-1), 100);
    QCOMPARE(requestedPercentage(13, factoryWith(12, 99)).value_or(-1), 99);
    for (const int step : {-1, 14, INT_MIN, INT_MAX})
        QVERIFY(!requestedPercentage(step, factory));
}

void TestBacklightSteps::aPercentageIsFromZeroToHundred()
{
    for (const int percentage : {0, 1, 99, 100})
        QVERIFY(isPercentage(percentage));
    for (const int percentage : {-1, 101, INT_MIN, INT_MAX})
        QVERIFY(!isPercentage(percentage));
}

void TestBacklightSteps::eachLevelOfTheLightHasItsStep_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<int>("step");
    QTest::addColumn<bool>("isBeyondTable");
    for (int level = 1; level <= 13; ++level)
        QTest::newRow(qPrintable(QString::number(level))) << level << level - 1 << false;
    QTest::newRow("14") << 14 << 12 << true;
    QTest::newRow("15") << 15 << 12 << true;
    QTest::newRow("16") << 16 << 12 << true;
}

void TestBacklightSteps::eachLevelOfTheLightHasItsStep()
{
    QFETCH(int, level);
    const LightStep light = stepForLevel(level);
    QTEST(light.step, "step");
    QTEST(light.isBeyondTable, "isBeyondTable");
}

QTEST_GUILESS_MAIN(TestBacklightSteps)
#include "test_backlightsteps.moc"
