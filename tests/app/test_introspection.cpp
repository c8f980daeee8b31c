#include "adaptors.h"
#include "board.h"
#include "daemontest.h"
#include "introspection.h"
#include "remote.h"

#include <QDBusMetaType>
#include <QDir>
#include <QXmlStreamReader>

/** Compares the interfaces of the running daemon with the documents for client developers. */
class TestIntrospection : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void everyDocumentIsReadable_data();
    void everyDocumentIsReadable();
    void documentsPromiseNoChangeSignalForProperties();
    void theDocumentsListExactlyTheShownMembers_data();
    void theDocumentsListExactlyTheShownMembers();
    void everyDocumentListsTheMembersOfItsAdaptor();
    void theDaemonShowsTheDocuments_data();
    void theDaemonShowsTheDocuments();
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

/** All documented members of the object at @p path, except those of @p absent interfaces. */
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

/** All members that the running daemon shows at @p path, except those of every object. */
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

QString signatureOf(int type)
{
    return QString::fromLatin1(QDBusMetaType::typeToSignature(type));
}

/** Formats a public slot or a signal as readIntrospection() does. */
QString memberOf(const QMetaMethod &method)
{
    const bool isSignal = method.methodType() == QMetaMethod::Signal;
    QStringList arguments;
    QStringList results;
    if (!isSignal && method.returnType() != QMetaType::Void)
        results << "out " + signatureOf(method.returnType());
    for (int i = 0; i < method.parameterCount(); ++i) {
        const QByteArray type = method.parameterTypes().at(i);
        if (type == "QDBusMessage")
            continue;
        if (!isSignal && type.endsWith('&'))
            results << "out " + signatureOf(QMetaType::type(type.chopped(1)));
        else
            arguments << QString(isSignal ? "out " : "in ") + signatureOf(method.parameterType(i)) +
                             ' ' + method.parameterNames().at(i);
    }
    return QString(isSignal ? "signal " : "method ") + method.name() + '(' +
           (arguments + results).join(", ") + ')';
}

/**
 * The members of the adaptor that are reachable over the bus, as readIntrospection() formats them.
 */
QStringList membersOf(const QMetaObject &adaptor)
{
    QStringList members;
    for (int i = QDBusAbstractAdaptor::staticMetaObject.methodCount(); i < adaptor.methodCount();
         ++i) {
        const QMetaMethod method = adaptor.method(i);
        const bool isSlot =
            method.methodType() == QMetaMethod::Slot && method.access() == QMetaMethod::Public;
        // A slot with an optional message appears twice, with the message and without it.
        if ((isSlot || method.methodType() == QMetaMethod::Signal) &&
            !members.contains(memberOf(method)))
            members << memberOf(method);
    }
    for (int i = QDBusAbstractAdaptor::staticMetaObject.propertyCount();
         i < adaptor.propertyCount(); ++i) {
        const QMetaProperty property = adaptor.property(i);
        members << QString("property %1 %2 %3")
                       .arg(property.name(), signatureOf(property.userType()),
                            property.isWritable() ? "readwrite" : "read");
    }
    members.sort();
    return members;
}

/** The text of the interface's XML element. */
QByteArray elementOf(const QByteArray &document, const QString &interface)
{
    const int begin = document.indexOf("<interface name=\"" + interface.toLatin1() + '"');
    const int end = document.indexOf("</interface>", begin);
    return begin < 0 || end < 0 ? QByteArray() : document.mid(begin, end - begin);
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

/** The daemon never emits PropertiesChanged: each property must have the annotation. */
void TestIntrospection::documentsPromiseNoChangeSignalForProperties()
{
    int properties = 0;
    const QStringList files = documents();
    for (const QString &file : files) {
        QXmlStreamReader content(readFile(QStringLiteral(DOCUMENTS "/") + file));
        QString promise;
        while (!content.atEnd()) {
            content.readNext();
            const QXmlStreamAttributes attributes = content.attributes();
            if (content.isStartElement() && content.name() == "annotation" &&
                attributes.value("name") == "org.freedesktop.DBus.Property.EmitsChangedSignal")
                promise = attributes.value("value").toString();
            if (content.isEndElement() && content.name() == "property") {
                QVERIFY2(promise == "false", qPrintable(file));
                promise.clear();
                ++properties;
            }
        }
    }
    QVERIFY(properties > 0);
}

void TestIntrospection::theDocumentsListExactlyTheShownMembers_data()
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

void TestIntrospection::theDocumentsListExactlyTheShownMembers()
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

void TestIntrospection::everyDocumentListsTheMembersOfItsAdaptor()
{
    QStringList files;
    for (const QMetaObject *adaptor : adaptors) {
        const int info = adaptor->indexOfClassInfo("D-Bus Interface");
        const QString interface = adaptor->classInfo(info).value();
        files << interface + ".xml";
        QCOMPARE(membersOf(*adaptor).join('\n'),
                 document(files.last()).interfaces.value(interface).join('\n'));
    }
    files.sort();
    QStringList all = documents();
    all.sort();
    QCOMPARE(files, all);
}

void TestIntrospection::theDaemonShowsTheDocuments_data()
{
    everyDocumentIsReadable_data();
}

void TestIntrospection::theDaemonShowsTheDocuments()
{
    QFETCH(QString, file);
    Board::setModel(0x8345);
    QVERIFY(daemon.start());
    const QByteArray installed = readFile(QStringLiteral(DOCUMENTS "/") + file);
    const QString interface = document(file).interfaces.firstKey();
    const Remote object("com.orvendis.Strandel.BoardManager", document(file).path,
                        "org.freedesktop.DBus.Introspectable");
    const QByteArray shown = object.reply("Introspect").arguments().value(0).toString().toUtf8();
    QVERIFY(!elementOf(installed, interface).isEmpty());
    QCOMPARE(elementOf(shown, interface), elementOf(installed, interface));
}

WORLD_TEST_MAIN(TestIntrospection)
#include "test_introspection.moc"
