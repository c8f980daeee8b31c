#include "enumnames.h"

#include <QObject>
#include <QTest>

/** Names of enumerators; the enumeration is registered by this class. */
class TestEnumNames : public QObject
{
    Q_OBJECT
    Q_ENUMS(Fruit)

public:
    enum Fruit { Apple = 3, Pear = 0, Quince = -7 };

private Q_SLOTS:
    void everyNameHasItsValue();
    void anyOtherNameHasNoValue_data();
    void anyOtherNameHasNoValue();
    void everyValueHasItsName();
    void anyOtherValueHasNoName();
    void allNamesAreListedAsDeclared();

private:
    const QMetaEnum fruits = registeredEnum(staticMetaObject, "Fruit");
};

void TestEnumNames::everyNameHasItsValue()
{
    QCOMPARE(enumValue(fruits, "Apple").value_or(-1), 3);
    QCOMPARE(enumValue(fruits, "Pear").value_or(-1), 0);
    QCOMPARE(enumValue(fruits, "Quince").value_or(-1), -7);
}

void TestEnumNames::anyOtherNameHasNoValue_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << "";
    QTest::newRow("lower case") << "apple";
    QTest::newRow("qualified") << "TestEnumNames::Apple";
    QTest::newRow("qualified with the enumeration") << "Fruit::Apple";
    QTest::newRow("leading blank") << " Apple";
    QTest::newRow("trailing blank") << "Apple ";
    QTest::newRow("two names") << "Apple|Pear";
    QTest::newRow("beginning") << "Appl";
    QTest::newRow("number") << "3";
    QTest::newRow("Cyrillic letter") << QString::fromUtf8("\u0410pple");
}

void TestEnumNames::anyOtherNameHasNoValue()
{
    QFETCH(QString, name);
    QVERIFY(!enumValue(fruits, name));
}

void TestEnumNames::everyValueHasItsName()
{
    QCOMPARE(enumName(fruits, 3), QStringLiteral("Apple"));
    QCOMPARE(enumName(fruits, 0), QStringLiteral("Pear"));
    QCOMPARE(enumName(fruits, -7), QStringLiteral("Quince"));
}

void TestEnumNames::anyOtherValueHasNoName()
{
    for (const int value : {1, 2, -1, INT_MAX, INT_MIN})
        QCOMPARE(enumName(fruits, value), QString());
}

void TestEnumNames::allNamesAreListedAsDeclared()
{
    QCOMPARE(enumNames(fruits), (QStringList{"Apple", "Pear", "Quince"}));
}

QTEST_APPLESS_MAIN(TestEnumNames)
#include "test_enumnames.moc"
