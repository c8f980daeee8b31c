#include "deadline.h"
#include "ethernettest.h"

namespace
{
/** The timeout of a connection attempt. */
constexpr int attemptSeconds = 60;
} // namespace

/** The timeouts of the wired interface. */
class TestEthernetTimeout : public EthernetTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void anAttemptWithoutAServiceFailsEveryMinute();
    void anAttemptWithoutAnAddressFails();
    void theFailureIsAnnouncedBeforeTheTechnologyIsPoweredOff();
    void aScriptThatHangsFailsTheAttempt();
    void aFailedStartOfTheScriptIsAnnouncedAgainAtTheTimeout();
    void anAddressSignalDoesNotEndTheAttempt();
    void disconnectDoesNotEndTheAttempt();
    void anotherConnectRestartsTheTimeout();
    void aConnectedTechnologyEndsTheAttempt();
    void anExistingAddressEndsTheAttempt();

    void startWaitsForOneTimeoutIfConnManDoesNotAnswer();
    void connManMayBeSuspendedInEveryState_data();
    void connManMayBeSuspendedInEveryState();

private:
    QString callWithoutAnswer(const QString &method, const QVariantList &values = {});
};

void TestEthernetTimeout::init()
{
    EthernetTest::init();
    daemon.controlClock();
}

/** Calls @p method, which calls ConnMan. Returns the reply after the call to ConnMan timed out. */
QString TestEthernetTimeout::callWithoutAnswer(const QString &method, const QVariantList &values)
{
    const QDBusPendingCall pending = ethernet.start(method, values);
    if (!daemon.letTimePassUntil([&] { return pending.isFinished(); }))
        return QStringLiteral("the call does not end");
    return renderReply(pending.reply());
}

void TestEthernetTimeout::anAttemptWithoutAServiceFailsEveryMinute()
{
    startDaemon();
    connman.setServices({});
    connectUntil("association");

    for (int times = 1; times <= 3; ++times) {
        daemon.letTimePass(attemptSeconds - 2);
        QCOMPARE(recorder.take(), QStringList());
        QCOMPARE(calls(), QStringList());

        daemon.letTimePass(2);
        QCOMPARE(recorder.waitFor(1), QStringList{state("failure")});
        QCOMPARE(calls(), QStringList{poweredOff});
    }
}

void TestEthernetTimeout::anAttemptWithoutAnAddressFails()
{
    startDaemon();
    connectUntil("ready");
    daemon.letTimePass(attemptSeconds);
    QCOMPARE(recorder.waitFor(1), QStringList{state("failure", cable)});
    QCOMPARE(calls(), QStringList{poweredOff});
}

void TestEthernetTimeout::theFailureIsAnnouncedBeforeTheTechnologyIsPoweredOff()
{
    startDaemon();
    connectUntil("association");
    connman.holdMethod(poweredOff);

    daemon.letTimePass(attemptSeconds);

    QVERIFY(connman.waitForCall(poweredOff));
    QTRY_COMPARE_WITH_TIMEOUT(recorder.recorded(), QStringList{state("failure")}, deadlineMs);
    connman.releaseMethod(poweredOff);
}

void TestEthernetTimeout::aScriptThatHangsFailsTheAttempt()
{
    startDaemon();
    script.hold();
    ethernet.call("connect");
    QVERIFY(script.waitFor("start 0"));

    daemon.letTimePass(attemptSeconds);
    QCOMPARE(recorder.waitFor(1), QStringList{state("failure")});
    QCOMPARE(calls(), QStringList{poweredOff});

    QCOMPARE(ethernet.call("connect"), failed(cannotSwitch));
    QCOMPARE(recorder.take(), QStringList{state("failure")});
    script.release();
    QCOMPARE(recorder.waitFor(1), QStringList{state("association")});
}

void TestEthernetTimeout::aFailedStartOfTheScriptIsAnnouncedAgainAtTheTimeout()
{
    startDaemon();
    script.remove();
    QCOMPARE(ethernet.call("connect"), failed(cannotSwitch));
    QCOMPARE(recorder.take(), QStringList{state("failure")});

    daemon.letTimePass(attemptSeconds);
    QCOMPARE(recorder.waitFor(1), QStringList{state("failure")});
    QCOMPARE(calls(), QStringList{poweredOff});
}

void TestEthernetTimeout::anAddressSignalDoesNotEndTheAttempt()
{
    startDaemon();
    connectUntil("ready");
    connman.setProperty(cable, "IPv4", lease);
    QCOMPARE(recorder.take().value(0), state("online", cable));

    daemon.letTimePass(attemptSeconds);
    QCOMPARE(recorder.waitFor(1), QStringList{state("failure", cable)});
    QCOMPARE(calls(), QStringList{poweredOff});
}

void TestEthernetTimeout::disconnectDoesNotEndTheAttempt()
{
    startDaemon();
    connectUntil("association");
    ethernet.call("disconnect");
    QCOMPARE(recorder.take(), (QStringList{state("disconnect"), state("idle")}));
    calls();

    daemon.letTimePass(attemptSeconds);
    QCOMPARE(recorder.waitFor(1), QStringList{state("failure")});
    QCOMPARE(calls(), QStringList{poweredOff});
}

void TestEthernetTimeout::anotherConnectRestartsTheTimeout()
{
    startDaemon();
    connectUntil("association");
    ethernet.call("disconnect");
    recorder.take();
    daemon.letTimePass(attemptSeconds / 2);
    connectUntil("association");

    daemon.letTimePass(attemptSeconds - 2);
    QCOMPARE(recorder.take(), QStringList());
    daemon.letTimePass(2);
    QCOMPARE(recorder.waitFor(1), QStringList{state("failure")});
}

void TestEthernetTimeout::aConnectedTechnologyEndsTheAttempt()
{
    startDaemon();
    connectUntil("online");

    daemon.letTimePass(3 * attemptSeconds);

    QCOMPARE(recorder.take(), QStringList());
    QCOMPARE(calls(), QStringList());
}

void TestEthernetTimeout::anExistingAddressEndsTheAttempt()
{
    startDaemon();
    connman.setServices({wired(cable, lease)});
    connectUntil("association");
    connman.emitServicesChanged();
    QCOMPARE(recorder.take(), (QStringList{state("ready"), state("online", cable)}));
    calls();

    daemon.letTimePass(3 * attemptSeconds);

    QCOMPARE(recorder.take(), QStringList());
    QCOMPARE(calls(), QStringList());
}

void TestEthernetTimeout::startWaitsForOneTimeoutIfConnManDoesNotAnswer()
{
    // letTimePass() wakes the daemon through its bus name, which the daemon does not own yet: run
    // the daemon's clock faster instead.
    daemon.speedUp(20);
    connman.holdMethod("Technology.SetProperty");
    QVERIFY(daemon.start());
    QCOMPARE(ethernet.call("getIPv4"), QString("({})"));
    QCOMPARE(calls(), QStringList{poweredOff});
}

void TestEthernetTimeout::connManMayBeSuspendedInEveryState_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("service");
    QTest::newRow("association") << "association" << QString();
    QTest::newRow("ready") << "ready" << cable;
    QTest::newRow("online") << "online" << cable;
}

void TestEthernetTimeout::connManMayBeSuspendedInEveryState()
{
    QFETCH(QString, name);
    QFETCH(QString, service);
    startDaemon();
    connectUntil(name);
    connman.freeze();

    QCOMPARE(callWithoutAnswer("setIPv4", {QVariantMap()}),
             failed("Cannot get property Connected"));
    QVERIFY(callWithoutAnswer("disconnect")
                .startsWith(failed("Cannot set property Powered: Did not receive a reply.")));

    connman.thaw();
    QVERIFY(recorder.take().contains(state("idle", service)));
    connectUntil("online");
}

WORLD_TEST_MAIN(TestEthernetTimeout)
#include "test_ethernet_timeout.moc"
