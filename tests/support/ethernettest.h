#ifndef ETHERNETTEST_H
#define ETHERNETTEST_H

#include "connmanstandin.h"
#include "daemontest.h"
#include "modescript.h"

#include <QMap>

/** A dictionary of texts, a{ss}: what many take for a map of properties. */
using Texts = QMap<QString, QString>;

/** Services of ConnMan, whose addresses are up to the test. */
extern const QString cable;
extern const QString otherCable;
ListedObject wired(const QString &path = cable, const QVariantMap &ipv4 = QVariantMap());
ListedObject wireless();

/** The "IPv4" property of a service with a lease, and how render() shows it. */
extern const QVariantMap lease;
extern const QString renderedLease;

/** Calls as ConnMan's journal shows them. */
extern const QString getServices;
extern const QString getTechnologies;
extern const QString poweredOn;
extern const QString poweredOff;
QString setNameservers(const QString &service, const QString &value);
QString setConfiguration(const QString &service, const QString &value);

/** The text of a connect that cannot start the script. */
extern const QString cannotSwitch;

QVariant variant(const QVariant &value);

/** The announcement of a state. */
QString state(const char *name, const QString &service = QString());

/** Connects as a client would, and has ConnMan lead to "association", "ready" or "online". */
void connectEthernet(const Remote &ethernet, ConnmanStandIn &connman, const QString &name);

/** Adds the column "value" with values of every shape that is no map of properties. */
void addMalformedValues();

/**
 * Base of the tests on the wired interface: the mode script is installed, and ConnMan runs with a
 * cable plugged in whose service has no address yet.
 */
class EthernetTest : public DaemonTest
{
    Q_OBJECT

protected:
    /** Starts the daemon and forgets what it did so far. */
    void startDaemon();

    /** As connectEthernet(), until the daemon is there; forgets what happened on the way. */
    void connectUntil(const QString &name);

    /** What the daemon asked of ConnMan for the wired interface since the last look. */
    QStringList calls();

    ConnmanStandIn connman;
    ModeScript script;
    SignalRecorder recorder{QStringLiteral("/KyComMgr")};
    const Remote ethernet{QStringLiteral("/KyComMgr"), QStringLiteral("Ethernet")};

protected Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
};

#endif
