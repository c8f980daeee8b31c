#include "linkdocument.h"

#include <QFile>
#include <QTest>

/** The documents show the tables of the daemon's state machines. */
class TestLinkDocument : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theDocumentsHaveTheTablesOfTheMachines_data();
    void theDocumentsHaveTheTablesOfTheMachines();
    void aStaleDocumentIsUpdated();
};

void TestLinkDocument::theDocumentsHaveTheTablesOfTheMachines_data()
{
    QTest::addColumn<QString>("document");
    QTest::addColumn<QStringList>("machines");
    QTest::newRow("station") << "wifi-connect.md" << QStringList{"station"};
    QTest::newRow("others") << "link-states.md" << QStringList{"Ethernet", "access point"};
}

void TestLinkDocument::theDocumentsHaveTheTablesOfTheMachines()
{
    QFETCH(QString, document);
    QFETCH(QStringList, machines);
    QFile file(QStringLiteral(DOCUMENTS "/") + document);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());

    QCOMPARE(text.count("<!-- machine: "), machines.size());
    for (const QString &machine : machines)
        QVERIFY(text.contains("<!-- machine: " + machine + " -->\n```mermaid\n"));
    QVERIFY2(text == withMachines(text), "run: ninja -C build documents");
}

void TestLinkDocument::aStaleDocumentIsUpdated()
{
    const QString text = withMachines(
        "before\n<!-- machine: access point -->\nold\n<!-- end of machine -->\nbehind");

    QVERIFY(text.startsWith("before\n<!-- machine: access point -->\n```mermaid\n"));
    QVERIFY(text.endsWith("\n<!-- end of machine -->\nbehind"));
    QVERIFY(text.contains("configuration --> ready : access point runs\n"));
    QVERIFY(!text.contains("old"));
}

QTEST_GUILESS_MAIN(TestLinkDocument)
#include "test_linkdocument.moc"
