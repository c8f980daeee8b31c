#include "tcpipstate.h"
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
    void whatIsUndecidedFailsAtTimeout_data();
    void whatIsUndecidedFailsAtTimeout();
    void anErrorOfConnMansOwnFailsTheAssociation_data();
    void anErrorOfConnMansOwnFailsTheAssociation();
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

void TestWifiJoin::whatIsUndecidedFailsAtTimeout_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("serviceState");
    QTest::addColumn<bool>("fails");

    // A column for each of these, in this order.
    const char *const serviceStates[] = {"idle",  "failure",    "association", "configuration",
                                         "ready", "disconnect", "online",      ""};
    const struct {
        int state;
        bool fails[8];
    } table[] = {
        {KyTcpIpState::Idle, {true, true, true, true, true, true, true, true}},
        {KyTcpIpState::Failure, {false, false, false, false, false, false, false, false}},
        {KyTcpIpState::Association, {true, true, true, true, true, true, true, true}},
        {KyTcpIpState::Configuration, {true, true, true, true, false, true, false, true}},
        {KyTcpIpState::Disconnect, {false, false, false, false, false, false, false, false}},
        {KyTcpIpState::Online, {false, false, false, false, false, false, false, false}},
    };
    for (const auto &row : table) {
        for (int column = 0; column < 8; ++column) {
            const QString serviceState = serviceStates[column];
            QTest::newRow(
                qPrintable(QString("%1, service %2")
                               .arg(KyTcpIpState::tpc_i_tcpIpState[row.state], serviceState)))
                << row.state << serviceState << row.fails[column];
        }
    }
}

void TestWifiJoin::whatIsUndecidedFailsAtTimeout()
{
    QFETCH(int, state);
    QFETCH(QString, serviceState);
    QFETCH(bool, fails);
    QCOMPARE(failsAtTimeout(state, serviceState), fails);
}

void TestWifiJoin::anErrorOfConnMansOwnFailsTheAssociation_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("errorName");
    QTest::addColumn<bool>("fails");

    const struct {
        const char *errorName;
        bool fails;
    } table[] = {
        {"net.connman.Error.Failed", true},
        {"net.connman.Error.OperationAborted", true},
        {"net.connman.Error.OperationTimeout", true},
        {"net.connman.Error.InProgress", false},
        {"net.connman.Error.AlreadyConnected", false},
        {"net.connman.Error", false},
        {"net.connman.Errors.Failed", false},
        {"org.freedesktop.DBus.Error.NoReply", false},
        {"org.freedesktop.DBus.Error.Timeout", false},
        {"org.freedesktop.DBus.Error.ServiceUnknown", false},
        {"", false},
    };
    for (int state = KyTcpIpState::Idle; state <= KyTcpIpState::Online; ++state) {
        for (const auto &row : table)
            QTest::newRow(qPrintable(
                QString("%1, error %2").arg(KyTcpIpState::tpc_i_tcpIpState[state], row.errorName)))
                << state << row.errorName << (row.fails && state == KyTcpIpState::Association);
    }
}

void TestWifiJoin::anErrorOfConnMansOwnFailsTheAssociation()
{
    QFETCH(int, state);
    QFETCH(QString, errorName);
    QFETCH(bool, fails);
    QCOMPARE(failsJoin(state, errorName), fails);
}

QTEST_GUILESS_MAIN(TestWifiJoin)
#include "test_wifijoin.moc"
