#include "testpart.h"

#include <QTest>

/** The parts of a long test: together they run every function once. */
class TestTestPart : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {}
    void everyFunctionIsInOnePart_data();
    void everyFunctionIsInOnePart();
    void withoutPartsAllFunctionsRun();
    void givenArgumentsDisableTheParts();
};

namespace
{
const QString program = QStringLiteral("program");
const QStringList functions = {"everyFunctionIsInOnePart", "withoutPartsAllFunctionsRun",
                               "givenArgumentsDisableTheParts"};
} // namespace

void TestTestPart::everyFunctionIsInOnePart_data()
{
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("1/1") << functions;
    QTest::newRow("1/2") << QStringList{functions.at(0), functions.at(2)};
    QTest::newRow("2/2") << QStringList{functions.at(1)};
    QTest::newRow("3/3") << QStringList{functions.at(2)};
}

void TestTestPart::everyFunctionIsInOnePart()
{
    QFETCH(QStringList, expected);
    QCOMPARE(argumentsOfPart(staticMetaObject, {program}, QTest::currentDataTag()),
             QStringList{program} + expected);
}

void TestTestPart::withoutPartsAllFunctionsRun()
{
    QCOMPARE(argumentsOfPart(staticMetaObject, {program}, QString()), QStringList{program});
}

void TestTestPart::givenArgumentsDisableTheParts()
{
    const QStringList given = {program, "-functions"};
    QCOMPARE(argumentsOfPart(staticMetaObject, given, "1/2"), given);
}

QTEST_APPLESS_MAIN(TestTestPart)
#include "test_testpart.moc"
