#include "kytcpip.h"
#include "wifijoin.h"

#include <QTest>

Q_DECLARE_METATYPE(JoinStep)

/** What the station does next about the network that it joins. */
class TestWifiJoin : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aStepFollowsFromBothStates_data();
    void aStepFollowsFromBothStates();
};

void TestWifiJoin::aStepFollowsFromBothStates_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("serviceState");
    QTest::addColumn<JoinStep>("step");

    const char *const serviceStates[] = {"idle",  "failure",    "association", "configuration",
                                         "ready", "disconnect", "online",      ""};
    using Step = JoinStep;
    // A column for each of these, in this order.
    const struct {
        int state;
        JoinStep steps[8];
    } table[] = {
        {KyTcpIpState::Idle,
         {Step::Associate, Step::Wait, Step::Wait, Step::Wait, Step::Wait, Step::Wait,
          Step::GoOnline, Step::Wait}},
        {KyTcpIpState::Failure,
         {Step::Wait, Step::Wait, Step::Wait, Step::Wait, Step::Wait, Step::Wait, Step::GoOnline,
          Step::Wait}},
        {KyTcpIpState::Association,
         {Step::Wait, Step::Fail, Step::Wait, Step::Wait, Step::Configure, Step::Wait,
          Step::GoOnline, Step::Wait}},
        {KyTcpIpState::Configuration,
         {Step::Wait, Step::Wait, Step::Wait, Step::Wait, Step::Wait, Step::Wait, Step::GoOnline,
          Step::Wait}},
        {KyTcpIpState::Online,
         {Step::Wait, Step::Wait, Step::Wait, Step::Wait, Step::Wait, Step::Wait, Step::GoOnline,
          Step::Wait}},
    };
    for (const auto &row : table) {
        for (int column = 0; column < 8; ++column) {
            const QString serviceState = serviceStates[column];
            QTest::newRow(
                qPrintable(QString("%1, service %2")
                               .arg(KyTcpIpState::tpc_i_tcpIpState[row.state], serviceState)))
                << row.state << serviceState << row.steps[column];
        }
    }
    QTest::newRow("another case") << int(KyTcpIpState::Idle) << "Idle" << JoinStep::Wait;
}

void TestWifiJoin::aStepFollowsFromBothStates()
{
    QFETCH(int, state);
    QFETCH(QString, serviceState);
    QFETCH(JoinStep, step);
    QCOMPARE(nextJoinStep(state, serviceState), step);
}

QTEST_GUILESS_MAIN(TestWifiJoin)
#include "test_wifijoin.moc"
