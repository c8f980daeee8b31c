#ifndef NETWORKTEST_H
#define NETWORKTEST_H

#include "connmanstandin.h"
#include "daemontest.h"
#include "simulatedmodescript.h"

#include <QScopedPointer>

/**
 * Base of the tests of the network adaptors: the mode script is installed, the stand-in for ConnMan
 * runs, and the test controls the daemon's clock.
 */
class NetworkTest : public DaemonTest
{
    Q_OBJECT

protected:
    ConnmanStandIn connman;
    SimulatedModeScript script;
    /** Records the signals of /KyComMgr after begin(). */
    QScopedPointer<SignalRecorder> recorder;

    const Remote ethernet{QStringLiteral("/KyComMgr"), QStringLiteral("Ethernet")};
    const Remote wifi{QStringLiteral("/KyComMgr"), QStringLiteral("WIFI")};
    const Remote wifiAp{QStringLiteral("/KyComMgr"), QStringLiteral("WIFIAP")};

    /** Starts the daemon, discards its calls so far, and records its signals. */
    void begin();

    /** Waits until the daemon has handled everything that has reached it. */
    void settle();

    /**
     * Waits until the daemon has exactly @p running child processes, has handled the ends of all
     * others, and is not about to start another one.
     */
    void waitForScripts(int running = 0);

    /**
     * Calls waitForScripts(), and lets the two seconds pass that the daemon gives the Wi-Fi module
     * after a script.
     */
    void passModuleDelay();

    /** Calls settle(); returns all signals since the last announced(). */
    QStringList announced();

    /** ConnMan's journal since the last orders(), without the calls of "Manager.Get...". */
    QStringList orders();

    /** A change of the link state, as the recorder formats it. */
    static QString state(const char *interface, const QString &path, const char *name);

    /** A Wi-Fi network in ConnMan's list: at networkPath(@p name), psk, strength 70. */
    static ListedObject network(const QString &name, const QString &serviceState);
    static QString networkPath(const QString &name);

    /** The records of the Wi-Fi trace: "method OP:operation state network". */
    static QStringList trace();

    /** Waits until the trace has this number of records of @p method. */
    static bool waitForTrace(const QString &method, int count = 1);

protected Q_SLOTS:
    void init();
    void cleanup();
};

#endif
