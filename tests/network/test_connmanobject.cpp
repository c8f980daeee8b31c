#include "connman.h"

#include "busvalue.h"
#include "deadline.h"
#include "remote.h"

#include <QDBusConnection>
#include <QDBusMetaType>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QProcess>
#include <QTest>

/** Returns its argument: both ends of the connection write and read every value. */
class Echo : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "test.Echo")

public Q_SLOTS:
    QList<ConnmanObject> objects(const QList<ConnmanObject> &value) { return value; }
    ManagedObjectList managed(const ManagedObjectList &value) { return value; }
};

/** The types of ConnMan's lists, sent over the bus to the test itself. */
class TestConnmanObject : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();

    void everyTypeHasItsSignature_data();
    void everyTypeHasItsSignature();
    void registeringAgainChangesNothing();
    void objectsArriveUnchanged();
    void anObjectWithoutPropertiesArrivesUnchanged();
    void anEmptyListArrivesUnchanged();
    void managedObjectsArriveUnchanged();
    void theFirstObjectWithThePropertyIsFound();
    void unsendableValuesAreRemovedAtEveryDepth();

private:
    QDBusMessage send(const QString &method, const QVariant &value);
    QList<ConnmanObject> sendObjects(const QList<ConnmanObject> &objects);

    QProcess m_bus;
    Echo m_echo;
    QString m_echoName;
};

void TestConnmanObject::initTestCase()
{
    connman::registerTypes();
    m_bus.start("dbus-daemon", {"--session", "--nofork", "--nopidfile", "--print-address"});
    QVERIFY(QTest::qWaitFor([this] { return m_bus.canReadLine(); }, deadlineMs));
    const QString address = m_bus.readLine().trimmed();

    // Two connections: Qt D-Bus does not send a message to itself over the bus.
    QDBusConnection service = QDBusConnection::connectToBus(address, "service");
    QVERIFY(service.registerObject("/echo", &m_echo, QDBusConnection::ExportAllSlots));
    m_echoName = service.baseService();
    QVERIFY(QDBusConnection::connectToBus(address, "client").isConnected());
}

void TestConnmanObject::cleanupTestCase()
{
    for (const char *name : {"client", "service"})
        QDBusConnection::disconnectFromBus(name);
    m_bus.terminate();
    QVERIFY(m_bus.waitForFinished());
}

QDBusMessage TestConnmanObject::send(const QString &method, const QVariant &value)
{
    QDBusMessage message = QDBusMessage::createMethodCall(m_echoName, "/echo", "test.Echo", method);
    message << value;
    const QDBusPendingCall call = QDBusConnection("client").asyncCall(message);
    if (!QTest::qWaitFor([&call] { return call.isFinished(); }, deadlineMs))
        qFatal("no answer");
    return call.reply();
}

QList<ConnmanObject> TestConnmanObject::sendObjects(const QList<ConnmanObject> &objects)
{
    const QDBusMessage reply = send("objects", QVariant::fromValue(objects));
    if (reply.signature() != "a(oa{sv})")
        qFatal("%s", qPrintable(renderReply(reply)));
    return qdbus_cast<QList<ConnmanObject>>(reply.arguments().at(0));
}

void TestConnmanObject::everyTypeHasItsSignature_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("signature");
    QTest::newRow("object") << QByteArray("ConnmanObject") << QByteArray("(oa{sv})");
    QTest::newRow("list") << QByteArray("QList<ConnmanObject>") << QByteArray("a(oa{sv})");
    QTest::newRow("interfaces") << QByteArray("InterfaceList") << QByteArray("a{sa{sv}}");
    QTest::newRow("managed") << QByteArray("ManagedObjectList") << QByteArray("a{oa{sa{sv}}}");
}

void TestConnmanObject::everyTypeHasItsSignature()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, signature);
    const int type = QMetaType::type(name);
    QVERIFY(type != QMetaType::UnknownType);
    QCOMPARE(QByteArray(QDBusMetaType::typeToSignature(type)), signature);
}

void TestConnmanObject::registeringAgainChangesNothing()
{
    const int type = QMetaType::type("ConnmanObject");
    connman::registerTypes();
    QCOMPARE(QMetaType::type("ConnmanObject"), type);
}

void TestConnmanObject::objectsArriveUnchanged()
{
    const QVariantMap ipv4 = {{"Method", "dhcp"}, {"Address", "10.77.0.50"}};
    const QList<ConnmanObject> received =
        sendObjects({{QDBusObjectPath("/b"), {{"Type", "wifi"}, {"IPv4", ipv4}}},
                     {QDBusObjectPath("/a"), {{"Type", "ethernet"}}}});

    QCOMPARE(received.size(), 2);
    QCOMPARE(received.at(0).path.path(), QString("/b"));
    QCOMPARE(plainMap(received.at(0).properties), (QVariantMap{{"Type", "wifi"}, {"IPv4", ipv4}}));
    QCOMPARE(received.at(1).path.path(), QString("/a"));
    QCOMPARE(received.at(1).properties, (QVariantMap{{"Type", "ethernet"}}));
}

void TestConnmanObject::anObjectWithoutPropertiesArrivesUnchanged()
{
    const QList<ConnmanObject> received = sendObjects({{QDBusObjectPath("/a"), {}}});
    QCOMPARE(received.size(), 1);
    QCOMPARE(received.at(0).path.path(), QString("/a"));
    QCOMPARE(received.at(0).properties, QVariantMap());
}

void TestConnmanObject::anEmptyListArrivesUnchanged()
{
    QCOMPARE(sendObjects({}).size(), 0);
}

void TestConnmanObject::managedObjectsArriveUnchanged()
{
    const ManagedObjectList managed = {
        {QDBusObjectPath("/a"), {{"one.Interface", {{"Name", "A"}}}, {"other.Interface", {}}}},
        {QDBusObjectPath("/b"), {}},
    };
    const QDBusMessage reply = send("managed", QVariant::fromValue(managed));
    QCOMPARE(reply.signature(), QString("a{oa{sa{sv}}}"));
    QVERIFY(qdbus_cast<ManagedObjectList>(reply.arguments().at(0)) == managed);
}

void TestConnmanObject::theFirstObjectWithThePropertyIsFound()
{
    const QList<ConnmanObject> objects = {
        {QDBusObjectPath("/a"), {}},
        {QDBusObjectPath("/b"), {{"Type", QVariantMap{{"Type", "ethernet"}}}}},
        {QDBusObjectPath("/c"), {{"Type", "ethernet"}}},
        {QDBusObjectPath("/d"), {{"Type", "ethernet"}}},
    };
    const std::optional<ConnmanObject> found = connman::findObject(objects, "Type", "ethernet");
    QVERIFY(found);
    QCOMPARE(found->path.path(), QString("/c"));
    QVERIFY(!connman::findObject(objects, "Type", "wifi"));
    QVERIFY(!connman::findObject({}, "Type", "wifi"));
}

void TestConnmanObject::unsendableValuesAreRemovedAtEveryDepth()
{
    const QVariant emptySignature = QVariant::fromValue(QDBusSignature());
    const QVariantMap map = {
        {"Kept", 1},
        {"Gone", QVariant()},
        {"Empty signature", emptySignature},
        {"Map", QVariantMap{{"Kept", 2}, {"Gone", QVariant()}, {"Empty", emptySignature}}},
        {"List", QVariantList{3, QVariant(), emptySignature, QVariantMap{{"Gone", QVariant()}}}},
    };
    QCOMPARE(sendableMap(map), (QVariantMap{{"Kept", 1},
                                            {"Map", QVariantMap{{"Kept", 2}}},
                                            {"List", QVariantList{3, QVariantMap()}}}));
}

QTEST_GUILESS_MAIN(TestConnmanObject)
#include "test_connmanobject.moc"
