#include "linkdocument.h"

#include <QFile>
#include <QTest>

/** The state machines in the document are the daemon's tables. */
class TestLinkDocument : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theDocumentHasTheTablesOfTheMachines();
    void aStaleDocumentIsUpdated();
};

void TestLinkDocument::theDocumentHasTheTablesOfTheMachines()
{
    QFile file(QStringLiteral(DOCUMENTS "/link-states.md"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());

    QCOMPARE(text.count("<!-- machine: "), 3);
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
