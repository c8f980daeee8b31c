#ifndef ETHERNETTEST_H
#define ETHERNETTEST_H

#include "connmanstandin.h"
#include "daemontest.h"
#include "simulatedmodescript.h"

#include <QMap>

/** A dictionary of texts, a{ss}, which is often confused with a map of properties. */
using Texts = QMap<QString, QString>;

/** Services of ConnMan; each test sets their addresses. */
extern const QString cable;
extern const QString otherCable;
ListedObject wired(const QString &path = cable, const QVariantMap &ipv4 = QVariantMap());
ListedObject wireless();

/** The "IPv4" property of a service with a lease, and its text from render(). */
extern const QVariantMap lease;
extern const QString renderedLease;

/** Calls as in ConnMan's journal. */
extern const QString getServices;
extern const QString getTechnologies;
extern const QString poweredOn;
extern const QString poweredOff;
QString setNameservers(const QString &service, const QString &value);
QString setConfiguration(const QString &service, const QString &value);

/** The error text of a connect that cannot start the script. */
extern const QString cannotSwitch;

QVariant variant(const QVariant &value);

/** The announcement of a state. */
QString state(const char *name, const QString &service = QString());

/**
 * Connects as a client does, and makes the stand-in do what the daemon needs to reach the state
 * @p name: "association", "ready" or "online".
 */
void connectEthernet(const Remote &ethernet, ConnmanStandIn &connman, const QString &name);

/** Adds test rows with malformed values in the column "value": none is a map of properties. */
void addMalformedValues();

/**
 * Base of the tests of the wired interface: the mode script is installed, and ConnMan runs with a
 * plugged-in cable whose service has no address yet.
 */
class EthernetTest : public DaemonTest
{
    Q_OBJECT

protected:
    /** Starts the daemon and discards its calls and signals so far. */
    void startDaemon();

    /**
     * Calls connectEthernet() and verifies that the daemon announced the state @p name last.
     * Discards the calls and signals so far.
     */
    void connectUntil(const QString &name);

    /**
     * The daemon's calls to ConnMan for the wired interface since the last call of this function.
     */
    QStringList calls();

    ConnmanStandIn connman;
    SimulatedModeScript script;
    SignalRecorder recorder{QStringLiteral("/KyComMgr")};
    const Remote ethernet{QStringLiteral("/KyComMgr"), QStringLiteral("Ethernet")};

protected Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
};

#endif
