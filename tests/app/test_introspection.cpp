#include "board.h"
#include "daemontest.h"
#include "introspection.h"

#include <QDir>

/** The interfaces of the running daemon against the documents that client developers get. */
class TestIntrospection : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void everyDocumentIsReadable_data();
    void everyDocumentIsReadable();
    void everyMemberStandsInTheDocuments_data();
    void everyMemberStandsInTheDocuments();
};

namespace
{
const QString ours = QStringLiteral("com.orvendis.Strandel.BoardManager.");

QStringList documents()
{
    return QDir(QStringLiteral(DOCUMENTS)).entryList({QStringLiteral("*.xml")}, QDir::Files);
}

Introspection document(const QString &file)
{
    return readIntrospection(readFile(QStringLiteral(DOCUMENTS "/") + file));
}

/** All members that the documents give to the object at @p path, but for some interfaces. */
QStringList documentedMembers(const QString &path, const QStringList &absent)
{
    QStringList members;
    const QStringList files = documents();
    for (const QString &file : files) {
        const Introspection content = document(file);
        const QString interface = content.interfaces.firstKey();
        if (content.path != path || absent.contains(interface))
            continue;
        for (const QString &member : content.interfaces.first())
            members << interface + QStringLiteral(": ") + member;
    }
    return members;
}

/** All members that the running daemon shows at @p path, but for those of every object. */
QStringList shownMembers(const QString &path)
{
    QStringList members;
    const Introspection object = introspect(path);
    for (auto interface = object.interfaces.begin(); interface != object.interfaces.end();
         ++interface) {
        if (interface.key().startsWith(QLatin1String("org.freedesktop.DBus.")))
            continue;
        for (const QString &member : interface.value())
            members << interface.key() + QStringLiteral(": ") + member;
    }
    return members;
}

QStringList without(QStringList members, const QStringList &others)
{
    for (const QString &other : others)
        members.removeAll(other);
    return members;
}
} // namespace

void TestIntrospection::everyDocumentIsReadable_data()
{
    QTest::addColumn<QString>("file");
    const QStringList files = documents();
    QVERIFY(!files.isEmpty());
    for (const QString &file : files)
        QTest::newRow(qPrintable(file)) << file;
}

void TestIntrospection::everyDocumentIsReadable()
{
    QFETCH(QString, file);
    const Introspection content = document(file);
    QCOMPARE(content.error, QString());
    QCOMPARE(content.interfaces.keys().join(' ') + ".xml", file);
    QVERIFY(content.path.startsWith('/'));
    QVERIFY(!content.interfaces.first().isEmpty());
}

void TestIntrospection::everyMemberStandsInTheDocuments_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("model");
    QTest::addColumn<QStringList>("absent");

    const QStringList screen = {ours + "Backlight", ours + "Brightness"};
    QTest::newRow("with screen") << "/KyDeviceMgr" << 0x8345 << QStringList();
    QTest::newRow("with the other screen") << "/KyDeviceMgr" << 0x8347 << QStringList();
    QTest::newRow("without screen") << "/KyDeviceMgr" << 0x8346 << screen;
    QTest::newRow("configuration") << "/KyConfigMgr" << 0x8345 << QStringList();
    QTest::newRow("network") << "/KyComMgr" << 0x8345 << QStringList();
    QTest::newRow("agent") << "/KyComMgr/Agent" << 0x8345 << QStringList();
}

void TestIntrospection::everyMemberStandsInTheDocuments()
{
    QFETCH(QString, path);
    QFETCH(int, model);
    QFETCH(QStringList, absent);
    Board::setModel(static_cast<ushort>(model));
    QVERIFY(daemon.start());

    const QStringList shown = shownMembers(path);
    const QStringList documented = documentedMembers(path, absent);
    QVERIFY(!documented.isEmpty());
    QCOMPARE(without(shown, documented).join('\n'), QString());
    QCOMPARE(without(documented, shown).join('\n'), QString());
    QCOMPARE(shown.size(), documented.size());
}

WORLD_TEST_MAIN(TestIntrospection)
#include "test_introspection.moc"
