#include "screenmodel.h"

#include <QTest>

/** Which instrument models have a screen. */
class TestScreenModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyTwoModelNumbersHaveAScreen();
    void aTextIsReadAsAHexadecimalNumber_data();
    void aTextIsReadAsAHexadecimalNumber();
};

void TestScreenModel::onlyTwoModelNumbersHaveAScreen()
{
    QList<int> models;
    for (int model = 0; model <= 0xFFFF; ++model) {
        if (hasScreen(QString::number(model, 16)))
            models << model;
    }
    QCOMPARE(models, (QList<int>{0x8345, 0x8347}));
}

void TestScreenModel::aTextIsReadAsAHexadecimalNumber_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<bool>("screen");

    QTest::newRow("with screen") << "8345" << true;
    QTest::newRow("leading zeros") << "00008347" << true;
    QTest::newRow("empty") << "" << false;
    QTest::newRow("missing") << QString() << false;
    QTest::newRow("no number") << "Strandel" << false;
    QTest::newRow("a number and more") << "8345 plus" << false;
    QTest::newRow("decimal") << "33605" << false;
    QTest::newRow("negative") << "-8345" << false;
    QTest::newRow("more than 16 bits") << "18345" << false;
    QTest::newRow("huge") << QString(100000, '8') << false;
}

void TestScreenModel::aTextIsReadAsAHexadecimalNumber()
{
    QFETCH(QString, model);
    QTEST(hasScreen(model), "screen");
}

QTEST_GUILESS_MAIN(TestScreenModel)
#include "test_screenmodel.moc"
