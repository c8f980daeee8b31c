#include "linkdocument.h"

#include <QFile>
#include <QTest>

/** The machines in the documents are those of the daemon. */
class TestLinkDocument : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theDocumentsHoldTheMachines_data();
    void theDocumentsHoldTheMachines();
    void aDocumentThatIsOutOfDateIsBroughtUpToDate();
};

void TestLinkDocument::theDocumentsHoldTheMachines_data()
{
    QTest::addColumn<QString>("document");
    QTest::addColumn<int>("machines");
    QTest::newRow("station") << "wifi-connect.md" << 1;
    QTest::newRow("others") << "ethernet-and-access-point.md" << 2;
}

void TestLinkDocument::theDocumentsHoldTheMachines()
{
    QFETCH(QString, document);
    QFile file(QString(DOCUMENTS "/") + document);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());

    QTEST(text.count("<!-- machine: "), "machines");
    QVERIFY2(text == withMachines(text), "run: ninja -C build link_documents");
}

void TestLinkDocument::aDocumentThatIsOutOfDateIsBroughtUpToDate()
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
