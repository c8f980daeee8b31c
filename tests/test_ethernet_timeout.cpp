#include "ethernettest.h"

#include <QElapsedTimer>

namespace
{
const int speed = 40;
/** The minute that a connection attempt may take, and well more than that, in our time. */
const int minute = 60000 / speed;
const int moreThanAMinute = 90000 / speed;
} // namespace

/** What time brings about on the wired interface: the daemon's clock runs faster than ours. */
class TestEthernetTimeout : public EthernetTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void anAttemptWithoutAServiceFailsEveryMinute();
    void anAttemptWithoutAnAddressFails();
    void aScriptThatHangsFailsTheAttempt();
    void aFailedStartOfTheScriptFailsOnceMore();
    void aServiceThatTellsItsAddressDoesNotEndTheAttempt();
    void disconnectDoesNotEndTheAttempt();
    void anotherConnectBeginsTheMinuteAnew();
    void aConnectedTechnologyEndsTheAttempt();
    void anAddressThatIsThereAlreadyEndsTheAttempt();

    void startWaitsOnceForAConnManThatDoesNotAnswer();
    void connManMayStandStillAtEveryState_data();
    void connManMayStandStillAtEveryState();

private:
    bool isSilentForMoreThanAMinute();
};

void TestEthernetTimeout::init()
{
    EthernetTest::init();
    daemon.speedUp(speed);
}

bool TestEthernetTimeout::isSilentForMoreThanAMinute()
{
    return !QTest::qWaitFor([this] { return !recorder.recorded().isEmpty(); }, moreThanAMinute);
}

void TestEthernetTimeout::anAttemptWithoutAServiceFailsEveryMinute()
{
    startDaemon();
    connman.setServices({});
    QElapsedTimer timer;
    timer.start();
    connectUntil("association");

    for (int times = 1; times <= 2; ++times) {
        QCOMPARE(recorder.waitFor(1), QStringList{state("failure")});
        QCOMPARE(calls(), QStringList{poweredOff});
        QVERIFY(timer.elapsed() >= times * minute - 100);
    }
}

void TestEthernetTimeout::anAttemptWithoutAnAddressFails()
{
    startDaemon();
    connectUntil("ready");
    QCOMPARE(recorder.waitFor(1), QStringList{state("failure", cable)});
    QCOMPARE(calls(), QStringList{poweredOff});
}

void TestEthernetTimeout::aScriptThatHangsFailsTheAttempt()
{
    startDaemon();
    script.hold();
    ethernet.call("connect");
    QVERIFY(script.waitFor("start 0"));

    QCOMPARE(recorder.waitFor(1), QStringList{state("failure")});
    QCOMPARE(calls(), QStringList{poweredOff});

    QCOMPARE(ethernet.call("connect"), failed(cannotSwitch));
    QCOMPARE(settledSignals(), QStringList{state("failure")});
    script.release();
    QCOMPARE(recorder.waitFor(1), QStringList{state("association")});
}

void TestEthernetTimeout::aFailedStartOfTheScriptFailsOnceMore()
{
    startDaemon();
    script.remove();
    QCOMPARE(ethernet.call("connect"), failed(cannotSwitch));
    QCOMPARE(settledSignals(), QStringList{state("failure")});

    QCOMPARE(recorder.waitFor(1), QStringList{state("failure")});
    QCOMPARE(calls(), QStringList{poweredOff});
}

void TestEthernetTimeout::aServiceThatTellsItsAddressDoesNotEndTheAttempt()
{
    startDaemon();
    connectUntil("ready");
    connman.setProperty(cable, "IPv4", lease);
    QCOMPARE(settledSignals().value(0), state("online", cable));

    QCOMPARE(recorder.waitFor(1), QStringList{state("failure", cable)});
    QCOMPARE(calls(), QStringList{poweredOff});
}

void TestEthernetTimeout::disconnectDoesNotEndTheAttempt()
{
    startDaemon();
    connectUntil("association");
    ethernet.call("disconnect");
    QCOMPARE(settledSignals(), (QStringList{state("disconnect"), state("idle")}));
    calls();

    QCOMPARE(recorder.waitFor(1), QStringList{state("failure")});
    QCOMPARE(calls(), QStringList{poweredOff});
}

void TestEthernetTimeout::anotherConnectBeginsTheMinuteAnew()
{
    startDaemon();
    connectUntil("association");
    ethernet.call("disconnect");
    settledSignals();
    QVERIFY(!QTest::qWaitFor([this] { return !recorder.recorded().isEmpty(); }, minute / 2));
    QElapsedTimer timer;
    timer.start();
    connectUntil("association");

    QCOMPARE(recorder.waitFor(1), QStringList{state("failure")});
    QVERIFY(timer.elapsed() >= minute - 100);
}

void TestEthernetTimeout::aConnectedTechnologyEndsTheAttempt()
{
    startDaemon();
    connectUntil("online");
    QVERIFY(isSilentForMoreThanAMinute());
    QCOMPARE(calls(), QStringList());
}

void TestEthernetTimeout::anAddressThatIsThereAlreadyEndsTheAttempt()
{
    startDaemon();
    connman.setServices({wired(cable, lease)});
    connectUntil("association");
    connman.emitServicesChanged();
    QCOMPARE(settledSignals(), (QStringList{state("ready"), state("online", cable)}));
    calls();

    QVERIFY(isSilentForMoreThanAMinute());
    QCOMPARE(calls(), QStringList());
}

void TestEthernetTimeout::startWaitsOnceForAConnManThatDoesNotAnswer()
{
    connman.holdMethod("Technology.SetProperty");
    QVERIFY(daemon.start());
    QCOMPARE(ethernet.call("getIPv4"), QString("({})"));
    QCOMPARE(calls(), QStringList{poweredOff});
}

void TestEthernetTimeout::connManMayStandStillAtEveryState_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"association", "ready", "online"})
        QTest::newRow(name) << name;
}

void TestEthernetTimeout::connManMayStandStillAtEveryState()
{
    QFETCH(QString, name);
    startDaemon();
    connectUntil(name);
    connman.freeze();

    QCOMPARE(ethernet.call("setIPv4", {QVariantMap()}), failed("Cannot get property Connected"));
    QVERIFY(ethernet.call("disconnect")
                .startsWith(failed("Cannot set property Powered: Did not receive a reply.")));
    QVERIFY(settledSignals().last().contains("\"idle\""));

    connman.thaw();
    connectUntil("online");
}

WORLD_TEST_MAIN(TestEthernetTimeout)
#include "test_ethernet_timeout.moc"
