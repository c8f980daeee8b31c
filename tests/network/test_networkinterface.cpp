#include "deadline.h"
#include "networkinterface.h"

#include <QFile>
#include <QProcess>
#include <QTest>

#include <fcntl.h>
#include <unistd.h>

/** The kernel's information about network interfaces, which the test creates in a private world. */
class TestNetworkInterface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void anInterfaceIsFoundByItsExactName_data();
    void anInterfaceIsFoundByItsExactName();
    void anInterfaceIsUpWithAndWithoutCarrier();
    void theLongestNameIsReadInFull();
    void theGreatestSizeOfAPacketIsTheKernels_data();
    void theGreatestSizeOfAPacketIsTheKernels();
    void aMissingInterfaceIsNeitherUpNorRunning();
    void aFreeStandardInputDoesNotHideTheFlags();
};

namespace
{
// A name of the maximum length; the peer's name differs only in the last character.
const QString name = QStringLiteral("interface000001");
const QString peer = QStringLiteral("interface000002");

bool ip(const QStringList &arguments)
{
    return QProcess::execute(QStringLiteral("ip"), arguments) == 0;
}

bool setLink(const QString &interface, const QStringList &settings)
{
    return ip(QStringList{"link", "set", interface} + settings);
}
} // namespace

void TestNetworkInterface::init()
{
    QVERIFY(ip({"link", "add", name, "type", "veth", "peer", "name", peer}));
}

void TestNetworkInterface::cleanup()
{
    QVERIFY(ip({"link", "delete", name}));
}

void TestNetworkInterface::anInterfaceIsFoundByItsExactName_data()
{
    QTest::addColumn<QString>("wanted");
    QTest::addColumn<bool>("isFound");
    QTest::newRow("its name") << name << true;
    QTest::newRow("the other's name") << peer << true;
    QTest::newRow("one character less") << name.chopped(1) << false;
    QTest::newRow("one character more") << name + '1' << false;
    QTest::newRow("in capital letters") << name.toUpper() << false;
    QTest::newRow("empty") << QString() << false;
}

void TestNetworkInterface::anInterfaceIsFoundByItsExactName()
{
    QFETCH(QString, wanted);
    QFETCH(bool, isFound);

    const QNetworkInterface found = findNetworkInterface(wanted);

    QCOMPARE(found.isValid(), isFound);
    QCOMPARE(found.name(), isFound ? wanted : QString());
}

void TestNetworkInterface::anInterfaceIsUpWithAndWithoutCarrier()
{
    const QNetworkInterface interface = findNetworkInterface(name);
    QVERIFY(!isUp(interface));
    QVERIFY(!isRunning(interface));

    QVERIFY(setLink(name, {"up"}));
    QVERIFY(isUp(interface));
    QVERIFY(!isRunning(interface));

    QVERIFY(setLink(peer, {"up"}));
    QTRY_VERIFY_WITH_TIMEOUT(isRunning(interface), deadlineMs);
    QVERIFY(isUp(interface));

    QVERIFY(setLink(name, {"down"}));
    QVERIFY(!isUp(interface));
    QTRY_VERIFY_WITH_TIMEOUT(!isRunning(interface), deadlineMs);
}

void TestNetworkInterface::theLongestNameIsReadInFull()
{
    QVERIFY(setLink(peer, {"up"}));

    QVERIFY(isUp(findNetworkInterface(peer)));
    QVERIFY(!isUp(findNetworkInterface(name)));
}

void TestNetworkInterface::theGreatestSizeOfAPacketIsTheKernels_data()
{
    QTest::addColumn<ushort>("size");
    for (const ushort size : {ushort(68), ushort(1280), ushort(1500), ushort(65535)})
        QTest::addRow("%d", size) << size;
}

void TestNetworkInterface::theGreatestSizeOfAPacketIsTheKernels()
{
    QFETCH(ushort, size);
    QVERIFY(setLink(name, {"mtu", QString::number(size)}));
    QVERIFY(maximumTransmissionUnit(findNetworkInterface(name)) == size);
}

void TestNetworkInterface::aMissingInterfaceIsNeitherUpNorRunning()
{
    const QNetworkInterface none;
    QVERIFY(!isUp(none));
    QVERIFY(!isRunning(none));
    QVERIFY(!maximumTransmissionUnit(none));
}

/** With stdin closed, the socket that queries an interface gets descriptor 0. */
void TestNetworkInterface::aFreeStandardInputDoesNotHideTheFlags()
{
    QVERIFY(setLink(name, {"up"}));
    const QNetworkInterface interface = findNetworkInterface(name);
    const int input = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    QVERIFY(input >= 0);
    close(STDIN_FILENO);

    const bool isSeenUp = isUp(interface);
    const bool isFreeAgain = fcntl(STDIN_FILENO, F_GETFD) < 0;

    dup2(input, STDIN_FILENO);
    close(input);
    QVERIFY(isSeenUp);
    QVERIFY(isFreeAgain);
}

int main(int argc, char *argv[])
{
    if (!QFile::exists(QStringLiteral("/run/private-world")))
        qFatal("this test makes network interfaces: run it in a private world");
    QCoreApplication application(argc, argv);
    TestNetworkInterface test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_networkinterface.moc"
