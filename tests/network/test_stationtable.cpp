#include "stationtable.h"

#include <QTest>

/** The station's next state, for each state of the network that it joins. */
class TestStationTable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aStateFollowsFromBothStates_data();
    void aStateFollowsFromBothStates();
    void anUndecidedAttemptFailsAtTimeout_data();
    void anUndecidedAttemptFailsAtTimeout();
    void anErrorOfConnMansOwnFailsTheAttempt_data();
    void anErrorOfConnMansOwnFailsTheAttempt();
    void aFailedConnectFailsTheAssociationAlone();
};

namespace
{
using namespace KyTcpIpState;

const char *const serviceStates[] = {"idle",  "failure",    "association", "configuration",
                                     "ready", "disconnect", "online",      ""};

Link connecting(int state)
{
    Link link;
    link.state = State(state);
    link.operation = LinkOperation::Connect;
    link.isFirmwareLoaded = true;
    return link;
}

QString rowName(int state, const QString &serviceState)
{
    return QString("%1, service %2").arg(tpc_i_tcpIpState[state], serviceState);
}
} // namespace

void TestStationTable::aStateFollowsFromBothStates_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("serviceState");
    QTest::addColumn<int>("expected");

    // One column for each state of the service, in the order of serviceStates.
    const struct {
        int state;
        int next[8];
    } table[] = {
        {Idle, {Association, Idle, Idle, Idle, Idle, Idle, Online, Idle}},
        {Failure, {Failure, Failure, Failure, Failure, Failure, Failure, Online, Failure}},
        {Association,
         {Association, Failure, Association, Association, Configuration, Association, Online,
          Association}},
        {Configuration,
         {Configuration, Configuration, Configuration, Configuration, Configuration, Configuration,
          Online, Configuration}},
        {Online, {Online, Online, Online, Online, Online, Online, Online, Online}},
    };
    for (const auto &row : table) {
        for (int column = 0; column < 8; ++column) {
            const QString serviceState = serviceStates[column];
            QTest::newRow(qPrintable(rowName(row.state, serviceState)))
                << row.state << serviceState << row.next[column];
        }
    }
    QTest::newRow("another case") << int(Idle) << "Idle" << int(Idle);
}

void TestStationTable::aStateFollowsFromBothStates()
{
    QFETCH(QString, serviceState);
    QFETCH(int, state);

    const LinkStep step = next(stationTable, connecting(state), requestedEvent(serviceState));

    QTEST(int(step.link.state), "expected");
    // Only an "online" service ends the attempt.
    QCOMPARE(step.link.operation == LinkOperation::None, serviceState == "online");
}

void TestStationTable::anUndecidedAttemptFailsAtTimeout_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("serviceState");
    QTest::addColumn<bool>("fails");

    const struct {
        int state;
        bool fails[8];
    } table[] = {
        {Idle, {true, true, true, true, true, true, false, true}},
        {Failure, {false, false, false, false, false, false, false, false}},
        {Association, {true, true, true, true, true, true, false, true}},
        {Configuration, {true, true, true, true, false, true, false, true}},
        {Disconnect, {false, false, false, false, false, false, false, false}},
        {Online, {false, false, false, false, false, false, false, false}},
    };
    for (const auto &row : table) {
        for (int column = 0; column < 8; ++column) {
            const QString serviceState = serviceStates[column];
            QTest::newRow(qPrintable(rowName(row.state, serviceState)))
                << row.state << serviceState << row.fails[column];
        }
    }
}

void TestStationTable::anUndecidedAttemptFailsAtTimeout()
{
    QFETCH(int, state);
    QFETCH(QString, serviceState);
    QFETCH(bool, fails);
    // Evaluate the service first: an "online" service ends the attempt before the timeout.
    Link link = next(stationTable, connecting(state), requestedEvent(serviceState)).link;
    link.state = State(state);

    const LinkStep step = next(stationTable, link, LinkEvent::TimeJudged);

    QCOMPARE(step.row != nullptr, fails);
    QCOMPARE(step.link.state, fails ? Failure : State(state));
}

void TestStationTable::anErrorOfConnMansOwnFailsTheAttempt_data()
{
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
    for (const auto &row : table)
        QTest::newRow(row.errorName) << row.errorName << row.fails;
}

void TestStationTable::anErrorOfConnMansOwnFailsTheAttempt()
{
    QFETCH(QString, errorName);
    QFETCH(bool, fails);
    QCOMPARE(failsConnect(errorName), fails);
}

void TestStationTable::aFailedConnectFailsTheAssociationAlone()
{
    for (int state = Idle; state <= Online; ++state) {
        const LinkStep step = next(stationTable, connecting(state), LinkEvent::ConnectFailed);
        QCOMPARE(step.row != nullptr, state == Association);
        QCOMPARE(step.link.state, state == Association ? Failure : State(state));
    }
}

QTEST_GUILESS_MAIN(TestStationTable)
#include "test_stationtable.moc"
