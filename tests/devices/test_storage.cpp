#include "board.h"
#include "busmonitor.h"
#include "daemontest.h"
#include "deadline.h"
#include "kernelevents.h"
#include "kystorage.h"
#include "processes.h"

#include <QProcess>
#include <QSignalSpy>

/** The removable storage, on the running daemon. */
class TestStorage : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void slotsOfTheListenerCannotBeCalled_data();
    void slotsOfTheListenerCannotBeCalled();

    void isMountedReportsEachDevice();
    void isMountedOfAnUnknownNameIsFalse_data();
    void isMountedOfAnUnknownNameIsFalse();
    void umountUnmountsAndAnnouncesTheDevice_data();
    void umountUnmountsAndAnnouncesTheDevice();
    void umountAnnouncesTheDeviceEvenWhenItFails_data();
    void umountAnnouncesTheDeviceEvenWhenItFails();
    void aFailedUmountSendsErrorThenSignalsThenReturn_data();
    void aFailedUmountSendsErrorThenSignalsThenReturn();
    void umountRefusesAnUnknownName_data();
    void umountRefusesAnUnknownName();
    void failingHardwareMeansNotMounted();
    void slowHardwareOnlyDelaysTheReply();

    void aCardInsertedBeforeTheStartIsNotAnnounced();
    void theSdLedShowsTheStateFromTheStart_data();
    void theSdLedShowsTheStateFromTheStart();
    void theSdLedFollowsTheCard();

    void theListenerJoinsNetlinkGroups1And5();
    void theListenersThreadBlocksAllSignals();
    void eventsOfTheFirstPartitionsAreAnnounced_data();
    void eventsOfTheFirstPartitionsAreAnnounced();
    void otherEventsAreIgnored();
    void anEventIsReadWithoutBytesOfThePreviousOne();
    void aDeviceIsAnnouncedWhenItIsPluggedInAndOut_data();
    void aDeviceIsAnnouncedWhenItIsPluggedInAndOut();
    void theKernelsOwnEventsAreAnnounced_data();
    void theKernelsOwnEventsAreAnnounced();
    void aBurstLosesNoEventAndTheDaemonStillReplies();
    void aSuspendedListenerLosesNoEvent();
    void theListenerHasItsReceiveBuffer();
    void aListenerReceivesEventsAfterALoss();

    void aFailedListenerEndsSilentlyAndTheDaemonStillReplies_data();
    void aFailedListenerEndsSilentlyAndTheDaemonStillReplies();
    void aStoppedListenerEndsWithTheNextEvent();
    void theStoragesDestructorWaitsForItsListener();

private:
    bool startListening();
    void verifyBurstIsAnnounced(SignalRecorder &recorder);
    int threads() const;

    const Remote storage{QStringLiteral("/KyDeviceMgr"), QStringLiteral("Storage")};
    const QString cardMounted = QStringLiteral("Storage.deviceChangedMountState(\"SD\", true)");
    const QString cardUnmounted = QStringLiteral("Storage.deviceChangedMountState(\"SD\", false)");
    const QString cardIn = QStringLiteral("Storage.sdcardPresence(true)");
    const QString cardOut = QStringLiteral("Storage.sdcardPresence(false)");
    const QString keyUnmounted = QStringLiteral("Storage.deviceChangedMountState(\"USB\", false)");
    const QString keyIn = QStringLiteral("Storage.usbKeyPresence(true)");
    const QString keyOut = QStringLiteral("Storage.usbKeyPresence(false)");
};

namespace
{
/** An event as the kernel sends it: the header, then the device's properties. */
QByteArray kernelEvent(const QByteArray &action, const QByteArray &path)
{
    const QByteArray name = path.mid(path.lastIndexOf('/') + 1);
    return action + '@' + path + '\0' + "ACTION=" + action + '\0' + "DEVPATH=" + path + '\0' +
           "SUBSYSTEM=block" + '\0' + "DEVNAME=" + name + '\0';
}

const QByteArray card = "/devices/platform/soc/mmc_host/mmc0/mmc0:0001/block/mmcblk0";
const QByteArray cardPartition = card + "/mmcblk0p1";
const QByteArray keyPartition = "/devices/platform/soc/usb1/1-1/host0/block/sda/sda1";

constexpr int burstSize = 10000;

void send(const QList<QByteArray> &messages)
{
    for (const QByteArray &message : messages)
        QVERIFY(Board::sendKernelEvent(message));
}

bool run(const QString &program, const QStringList &arguments)
{
    return QProcess::execute(program, arguments) == 0;
}
} // namespace

/** Starts the daemon and waits until its listener receives events. */
bool TestStorage::startListening()
{
    return daemon.start() && KernelEvents::waitForListeners(1);
}

/** Verifies that the daemon announces every event that the kernel delivered, and a later event. */
void TestStorage::verifyBurstIsAnnounced(SignalRecorder &recorder)
{
    const int undelivered = KernelEvents::undelivered();
    // Without CAP_NET_ADMIN, the listener has a buffer of ordinary size, which may overflow.
    if (KernelEvents::isRoomUnlimited())
        QCOMPARE(undelivered, 0);
    const int delivered = burstSize - undelivered;
    QCOMPARE(recorder.waitFor(delivered, 60000),
             QStringList(QVector<QString>(delivered, keyIn).toList()));
    send({kernelEvent("remove", cardPartition)});
    QCOMPARE(recorder.waitFor(2), (QStringList{cardUnmounted, cardOut}));
}

int TestStorage::threads() const
{
    return threadsOf(daemon.processId()).size();
}

void TestStorage::slotsOfTheListenerCannotBeCalled_data()
{
    QTest::addColumn<QString>("slot");
    QTest::addColumn<QVariantList>("arguments");
    QTest::newRow("card") << "sdCardSlot" << QVariantList{true};
    QTest::newRow("key") << "usbKeySlot" << QVariantList{true};
    QTest::newRow("run") << "run" << QVariantList{};
    QTest::newRow("stop") << "stop" << QVariantList{};
}

void TestStorage::slotsOfTheListenerCannotBeCalled()
{
    QFETCH(QString, slot);
    QFETCH(QVariantList, arguments);
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");

    QVERIFY(storage.call(slot, arguments).startsWith("org.freedesktop.DBus.Error.UnknownMethod: "));
    QCOMPARE(recorder.take(), QStringList());
}

void TestStorage::isMountedReportsEachDevice()
{
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::set("storage/SD/mounted", "1");
    Board::clearJournal();
    QCOMPARE(storage.call("isMounted", {"SD"}), QStringLiteral("(true)"));
    QCOMPARE(storage.call("isMounted", {"USB"}), QStringLiteral("(false)"));

    Board::set("storage/SD/mounted", "0");
    Board::set("storage/USB/mounted", "1");
    QCOMPARE(storage.call("isMounted", {"SD"}), QStringLiteral("(false)"));
    QCOMPARE(storage.call("isMounted", {"USB"}), QStringLiteral("(true)"));

    QCOMPARE(Board::journal(),
             (QStringList{"KyFaccess.isMounted(0) = true", "KyFaccess.isMounted(1) = false",
                          "KyFaccess.isMounted(0) = false", "KyFaccess.isMounted(1) = true"}));
    QCOMPARE(recorder.take(), QStringList());
}

void TestStorage::isMountedOfAnUnknownNameIsFalse_data()
{
    QTest::addColumn<QString>("device");
    for (const char *device : {"sd", "usb", "", "SD ", "0", "mmcblk0p1", "SDUSB"})
        QTest::addRow("\"%s\"", device) << device;
}

void TestStorage::isMountedOfAnUnknownNameIsFalse()
{
    QFETCH(QString, device);
    QVERIFY(daemon.start());
    Board::set("storage/SD/mounted", "1");
    Board::set("storage/USB/mounted", "1");
    Board::clearJournal();

    QCOMPARE(storage.call("isMounted", {device}), QStringLiteral("(false)"));
    QCOMPARE(Board::journal(), QStringList());
}

void TestStorage::umountUnmountsAndAnnouncesTheDevice_data()
{
    QTest::addColumn<QString>("device");
    QTest::addColumn<QStringList>("calls");
    QTest::addColumn<QStringList>("announcements");
    QTest::newRow("SD") << "SD"
                        << QStringList{"KyFaccess.unmountDevice(0) = 0",
                                       "KyLeds.setLedState(26, 0) = 0"}
                        << QStringList{cardUnmounted, cardOut};
    QTest::newRow("USB") << "USB" << QStringList{"KyFaccess.unmountDevice(1) = 0"}
                         << QStringList{keyUnmounted, keyOut};
}

void TestStorage::umountUnmountsAndAnnouncesTheDevice()
{
    QFETCH(QString, device);
    QFETCH(QStringList, calls);
    QFETCH(QStringList, announcements);
    Board::set("storage/" + device + "/mounted", "1");
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::clearJournal();

    QCOMPARE(storage.call("umount", {device}), QStringLiteral("()"));

    QCOMPARE(recorder.take(), announcements);
    QCOMPARE(Board::journal(), calls);
    QCOMPARE(Board::get("storage/" + device + "/mounted"), QStringLiteral("0"));
}

void TestStorage::umountAnnouncesTheDeviceEvenWhenItFails_data()
{
    QTest::addColumn<QString>("device");
    QTest::addColumn<QStringList>("announcements");
    QTest::newRow("SD") << "SD" << QStringList{cardUnmounted, cardOut};
    QTest::newRow("USB") << "USB" << QStringList{keyUnmounted, keyOut};
}

void TestStorage::umountAnnouncesTheDeviceEvenWhenItFails()
{
    QFETCH(QString, device);
    QFETCH(QStringList, announcements);
    Board::set("storage/" + device + "/mounted", "1");
    Board::fault("KyFaccess.unmountDevice", "always");
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");

    QCOMPARE(storage.call("umount", {device}), failure("Write", "Umount failed"));

    QCOMPARE(recorder.take(), announcements);
    QCOMPARE(storage.call("isMounted", {device}), QStringLiteral("(true)"));
}

void TestStorage::aFailedUmountSendsErrorThenSignalsThenReturn_data()
{
    QTest::addColumn<QString>("device");
    QTest::addColumn<QString>("presence");
    QTest::newRow("SD") << "SD"
                        << "sdcardPresence";
    QTest::newRow("USB") << "USB"
                         << "usbKeyPresence";
}

void TestStorage::aFailedUmountSendsErrorThenSignalsThenReturn()
{
    QFETCH(QString, device);
    QFETCH(QString, presence);
    const QString notUnmounted = failure("Write", "Umount failed");
    Board::fault("KyFaccess.unmountDevice", "always");
    QVERIFY(daemon.start());
    BusMonitor monitor;

    QCOMPARE(storage.call("umount", {device}), notUnmounted);

    const QString signal = "signal com.orvendis.Strandel.BoardManager.Storage.";
    QCOMPARE(monitor.takeFromDaemon(),
             (QStringList{"error " + notUnmounted, signal + "deviceChangedMountState(sb)",
                          signal + presence + "(b)", "return ()"}));
}

void TestStorage::umountRefusesAnUnknownName_data()
{
    isMountedOfAnUnknownNameIsFalse_data();
}

void TestStorage::umountRefusesAnUnknownName()
{
    QFETCH(QString, device);
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::clearJournal();

    QCOMPARE(storage.call("umount", {device}), failure("Write", "Unknowned device"));

    QCOMPARE(recorder.take(), QStringList());
    QCOMPARE(Board::journal(), QStringList());
}

void TestStorage::failingHardwareMeansNotMounted()
{
    Board::set("storage/SD/inserted", "1");
    Board::set("storage/SD/mounted", "1");
    Board::fault("KyFaccess.isDeviceInserted", "always");
    Board::fault("KyFaccess.isMounted", "always");
    QVERIFY(startListening());
    SignalRecorder recorder("/KyDeviceMgr");

    QCOMPARE(Board::get("leds/SD_STATUS"), QStringLiteral("OFF"));
    QCOMPARE(storage.call("isMounted", {"SD"}), QStringLiteral("(false)"));
    send({kernelEvent("add", cardPartition)});
    QCOMPARE(recorder.waitFor(2), (QStringList{cardMounted, cardIn}));
}

void TestStorage::slowHardwareOnlyDelaysTheReply()
{
    Board::set("storage/USB/mounted", "1");
    for (const char *operation : {"isDeviceInserted", "isMounted", "unmountDevice"})
        Board::fault(QStringLiteral("KyFaccess.") + operation, "delay 200");
    Board::fault("KyLeds.setLedState", "delay 200");
    QVERIFY(startListening());
    SignalRecorder recorder("/KyDeviceMgr");

    send({kernelEvent("add", cardPartition), kernelEvent("remove", cardPartition),
          kernelEvent("add", keyPartition)});
    QCOMPARE(storage.call("isMounted", {"USB"}), QStringLiteral("(true)"));
    QCOMPARE(recorder.waitFor(5),
             (QStringList{cardMounted, cardIn, cardUnmounted, cardOut, keyIn}));
    QCOMPARE(storage.call("umount", {"USB"}), QStringLiteral("()"));
    QCOMPARE(recorder.take(), (QStringList{keyUnmounted, keyOut}));
    QCOMPARE(storage.call("isMounted", {"USB"}), QStringLiteral("(false)"));
}

void TestStorage::aCardInsertedBeforeTheStartIsNotAnnounced()
{
    Board::set("storage/SD/inserted", "1");
    SignalRecorder recorder("/KyDeviceMgr");

    QVERIFY(startListening());

    QCOMPARE(recorder.take().filter("Storage."), QStringList());
    // The daemon also asks whether the card is inserted, but the LED shows whether it is mounted.
    QCOMPARE(
        Board::journal().filter("KyFaccess."),
        (QStringList{"KyFaccess.isDeviceInserted(0) = true", "KyFaccess.isMounted(0) = false"}));
}

void TestStorage::theSdLedShowsTheStateFromTheStart_data()
{
    QTest::addColumn<QString>("mounted");
    QTest::addColumn<QString>("shown");
    QTest::newRow("mounted") << "1"
                             << "ON";
    QTest::newRow("not mounted") << "0"
                                 << "OFF";
}

void TestStorage::theSdLedShowsTheStateFromTheStart()
{
    QFETCH(QString, mounted);
    QFETCH(QString, shown);
    Board::set("storage/SD/mounted", mounted);
    Board::set("leds/SD_STATUS", "BLINK_1HZ");

    QVERIFY(daemon.start());

    QCOMPARE(Board::get("leds/SD_STATUS"), shown);
}

void TestStorage::theSdLedFollowsTheCard()
{
    QVERIFY(startListening());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::clearJournal();

    send({kernelEvent("add", cardPartition), kernelEvent("add", keyPartition),
          kernelEvent("remove", cardPartition), kernelEvent("remove", keyPartition)});
    QCOMPARE(recorder.waitFor(6).size(), 6);

    QCOMPARE(Board::journal(),
             (QStringList{"KyLeds.setLedState(26, 3) = 0", "KyLeds.setLedState(26, 0) = 0"}));
}

void TestStorage::theListenerJoinsNetlinkGroups1And5()
{
    QVERIFY(startListening());
    // A bit for each group. The kernel sends its events to group 1.
    QCOMPARE(KernelEvents::groups(), 0x11U);
}

void TestStorage::theListenersThreadBlocksAllSignals()
{
    QVERIFY(startListening());

    QList<QByteArray> blocked;
    for (const int thread : threadsOf(daemon.processId())) {
        if (statusOf(thread, "Name") == "KySdcardThread")
            blocked << statusOf(thread, "SigBlk");
    }
    // All signals except those that cannot be blocked (9 and 19) and those of the C library (32 and
    // 33).
    QCOMPARE(blocked, QList<QByteArray>{"fffffffe7ffbfeff"});
}

void TestStorage::eventsOfTheFirstPartitionsAreAnnounced_data()
{
    QTest::addColumn<QByteArray>("message");
    QTest::addColumn<QStringList>("announcements");
    QTest::newRow("card in") << kernelEvent("add", cardPartition)
                             << QStringList{cardMounted, cardIn};
    QTest::newRow("card out") << kernelEvent("remove", cardPartition)
                              << QStringList{cardUnmounted, cardOut};
    QTest::newRow("key in") << kernelEvent("add", keyPartition) << QStringList{keyIn};
    QTest::newRow("key out") << kernelEvent("remove", keyPartition) << QStringList{keyOut};
    QTest::newRow("header only") << QByteArray("add@/sda1") << QStringList{keyIn};
    QTest::newRow("header of the greatest length")
        << QByteArray("add@") + QByteArray(4087, 'd') + "sda1" << QStringList{keyIn};
    QTest::newRow("longer than the buffer")
        << kernelEvent("remove", keyPartition) + QByteArray(8000, 'x') << QStringList{keyOut};
}

void TestStorage::eventsOfTheFirstPartitionsAreAnnounced()
{
    QFETCH(QByteArray, message);
    QFETCH(QStringList, announcements);
    QVERIFY(startListening());
    SignalRecorder recorder("/KyDeviceMgr");

    send({message});

    QCOMPARE(recorder.waitFor(announcements.size()), announcements);
}

void TestStorage::otherEventsAreIgnored()
{
    QVERIFY(startListening());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::clearJournal();

    send({
        kernelEvent("add", card + "/mmcblk0p2"),
        kernelEvent("add", card),
        kernelEvent("remove", "/devices/usb1/block/sdb/sdb1"),
        kernelEvent("add", "/devices/usb1/block/sda"),
        kernelEvent("change", cardPartition),
        kernelEvent("bind", keyPartition),
        kernelEvent("ADD", cardPartition),
        QByteArray("\0", 1) + kernelEvent("add", cardPartition),
        QByteArray("libudev\0", 8) + kernelEvent("add", cardPartition),
        QByteArray("add@/devices\0DEVNAME=mmcblk0p1\0", 31),
        QByteArray("add@") + QByteArray(4091, 'd') + "sda1",
        QByteArray("add@") + QByteArray(4088, 'd') + "sda1",
        QByteArray(4096, '\xff'),
        QByteArray("add@"),
    });
    // Events arrive in order: when this event is announced, the others have been handled.
    send({kernelEvent("remove", keyPartition)});

    QCOMPARE(recorder.waitFor(1), QStringList(keyOut));
    QCOMPARE(Board::journal(), QStringList());
}

void TestStorage::anEventIsReadWithoutBytesOfThePreviousOne()
{
    QVERIFY(startListening());
    SignalRecorder recorder("/KyDeviceMgr");

    send({kernelEvent("change", cardPartition), "add@", kernelEvent("remove", keyPartition),
          "remove@"});
    send({kernelEvent("add", keyPartition)});

    QCOMPARE(recorder.waitFor(2), (QStringList{keyOut, keyIn}));
}

void TestStorage::aDeviceIsAnnouncedWhenItIsPluggedInAndOut_data()
{
    QTest::addColumn<QString>("device");
    QTest::addColumn<QStringList>("in");
    QTest::addColumn<QStringList>("out");
    QTest::newRow("SD") << "SD" << QStringList{cardMounted, cardIn}
                        << QStringList{cardUnmounted, cardOut};
    QTest::newRow("USB") << "USB" << QStringList{keyIn} << QStringList{keyOut};
}

void TestStorage::aDeviceIsAnnouncedWhenItIsPluggedInAndOut()
{
    QFETCH(QString, device);
    QFETCH(QStringList, in);
    QFETCH(QStringList, out);
    QVERIFY(startListening());
    SignalRecorder recorder("/KyDeviceMgr");

    QVERIFY(Board::storage("insert", device));
    QCOMPARE(recorder.waitFor(in.size()), in);
    // Only the card has an LED.
    QCOMPARE(Board::get("leds/SD_STATUS"), QString(device == "SD" ? "ON" : "OFF"));
    QVERIFY(Board::storage("remove", device));
    QCOMPARE(recorder.waitFor(out.size()), out);
    QCOMPARE(Board::get("leds/SD_STATUS"), QStringLiteral("OFF"));
}

void TestStorage::theKernelsOwnEventsAreAnnounced_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("added");
    QTest::addColumn<QStringList>("removed");
    QTest::newRow("card") << "mmcblk0p1" << QStringList{cardMounted, cardIn}
                          << QStringList{cardUnmounted, cardOut};
    QTest::newRow("key") << "sda1" << QStringList{keyIn} << QStringList{keyOut};
}

void TestStorage::theKernelsOwnEventsAreAnnounced()
{
    QFETCH(QString, name);
    QFETCH(QStringList, added);
    QFETCH(QStringList, removed);
    QVERIFY(startListening());
    SignalRecorder recorder("/KyDeviceMgr");

    // The daemon searches the device path for the name. For a network interface with this name, the
    // kernel sends three events with such a path: for the interface, and for its two queues.
    QVERIFY(run("ip", {"link", "add", name, "numtxqueues", "1", "numrxqueues", "1", "type", "veth",
                       "peer", "name", "other"}));
    QCOMPARE(recorder.waitFor(3 * added.size()), added + added + added);
    QVERIFY(run("ip", {"link", "delete", name}));
    QCOMPARE(recorder.waitFor(3 * removed.size()), removed + removed + removed);
}

void TestStorage::aBurstLosesNoEventAndTheDaemonStillReplies()
{
    QVERIFY(startListening());
    SignalRecorder recorder("/KyDeviceMgr");

    QVERIFY(Board::sendKernelEvent(kernelEvent("add", keyPartition), burstSize));
    QCOMPARE(storage.call("isMounted", {"SD"}), QStringLiteral("(false)"));

    verifyBurstIsAnnounced(recorder);
}

void TestStorage::aSuspendedListenerLosesNoEvent()
{
    QVERIFY(startListening());
    SignalRecorder recorder("/KyDeviceMgr");

    QVERIFY(stopProcess(daemon.processId()));
    // The padding makes each event as large as the kernel's largest ones.
    QVERIFY(Board::sendKernelEvent(kernelEvent("add", keyPartition) + QByteArray(2048, 'x'),
                                   burstSize));
    QVERIFY(resumeProcess(daemon.processId()));

    verifyBurstIsAnnounced(recorder);
}

void TestStorage::theListenerHasItsReceiveBuffer()
{
    QVERIFY(startListening());
    QProcess sockets;
    sockets.start("ss", {"--no-header", "--family=netlink", "--memory"});
    QVERIFY(sockets.waitForFinished());
    // Only the listener has a receive buffer of 64 MB, and only if the kernel permits that size.
    const QByteArray printed = sockets.readAllStandardOutput();
    QVERIFY2(printed.contains("skmem:"), printed.constData());
    QCOMPARE(printed.contains("rb67108864,"), KernelEvents::isRoomUnlimited());
}

void TestStorage::aListenerReceivesEventsAfterALoss()
{
    QVERIFY(startListening());
    SignalRecorder recorder("/KyDeviceMgr");

    QVERIFY(stopProcess(daemon.processId()));
    while (KernelEvents::undelivered() == 0)
        QVERIFY(Board::sendKernelEvent(kernelEvent("change", card) + QByteArray(8000, 'x'), 1000));
    QVERIFY(resumeProcess(daemon.processId()));
    QVERIFY(KernelEvents::waitForEmptyQueues());
    send({kernelEvent("add", keyPartition)});

    QCOMPARE(recorder.waitFor(1), QStringList(keyIn));
}

void TestStorage::aFailedListenerEndsSilentlyAndTheDaemonStillReplies_data()
{
    QTest::addColumn<QString>("refused");
    QTest::newRow("socket refused") << "socket";
    QTest::newRow("bind refused") << "bind";
    QTest::newRow("receive fails") << "receive";
}

void TestStorage::aFailedListenerEndsSilentlyAndTheDaemonStillReplies()
{
    QFETCH(QString, refused);
    QVERIFY(startListening());
    const int threadsWithListener = threads();
    const QString usualLog = daemon.log();
    daemon.stop();
    daemon.setWrapper({REFUSE, refused});
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");

    QTRY_COMPARE_WITH_TIMEOUT(threads(), threadsWithListener - 1, deadlineMs);

    QCOMPARE(KernelEvents::listeners(), 0);
    send({kernelEvent("add", cardPartition)});
    QCOMPARE(storage.call("isMounted", {"SD"}), QStringLiteral("(false)"));
    QCOMPARE(storage.call("umount", {"USB"}), QStringLiteral("()"));
    QCOMPARE(recorder.take(), (QStringList{keyUnmounted, keyOut}));
    QCOMPARE(daemon.log(), usualLog);
}

void TestStorage::aStoppedListenerEndsWithTheNextEvent()
{
    KySdcardThread listener;
    QSignalSpy cardEvents(&listener, &KySdcardThread::sdcardEvent);
    QSignalSpy keyEvents(&listener, &KySdcardThread::usbKeyEvent);
    listener.start();
    QVERIFY(KernelEvents::waitForListeners(1));

    listener.stop();
    QVERIFY(listener.isRunning());
    send({kernelEvent("add", card)});

    QVERIFY(listener.wait(10000));
    QCOMPARE(KernelEvents::listeners(), 0);
    QCOMPARE(cardEvents.size() + keyEvents.size(), 0);
}

void TestStorage::theStoragesDestructorWaitsForItsListener()
{
    QObject root;
    auto adaptor = new KyStorage(&root);
    QVERIFY(KernelEvents::waitForListeners(1));
    // Sends one event after the other until the destructor returns.
    std::atomic<bool> isDestroyed(false);
    QThread *sender = QThread::create([&isDestroyed] {
        while (!isDestroyed)
            send({kernelEvent("change", card)});
    });
    sender->start();

    delete adaptor;
    isDestroyed = true;

    // send() forks, and the child holds a copy of the listener's socket until exec(). Wait until
    // the last send() has ended, so that no copy is counted.
    QVERIFY(sender->wait(10000));
    delete sender;
    QCOMPARE(KernelEvents::listeners(), 0);
}

WORLD_TEST_MAIN(TestStorage)
#include "test_storage.moc"
