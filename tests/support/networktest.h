#ifndef NETWORKTEST_H
#define NETWORKTEST_H

#include "connmanstandin.h"
#include "daemontest.h"
#include "modescript.h"

#include <QScopedPointer>

/**
 * Base of the tests on the network adaptors: the module's mode script is installed, the stand-in
 * for ConnMan runs, and the daemon's clock is under the test's control.
 */
class NetworkTest : public DaemonTest
{
    Q_OBJECT

protected:
    ConnmanStandIn connman;
    ModeScript script;
    /** Records /KyComMgr from begin() on. */
    QScopedPointer<SignalRecorder> recorder;

    const Remote ethernet{QStringLiteral("/KyComMgr"), QStringLiteral("Ethernet")};
    const Remote wifi{QStringLiteral("/KyComMgr"), QStringLiteral("WIFI")};
    const Remote wifiAp{QStringLiteral("/KyComMgr"), QStringLiteral("WIFIAP")};

    /** Starts the daemon, forgets what it did on the way, and records its signals. */
    void begin();

    /** Waits until the daemon has handled everything that reached it by now. */
    void settle();

    /**
     * Waits until the daemon has seen the ends of all scripts that it started but so many, and of
     * those that it started thereupon.
     */
    void waitForScripts(int running = 0);

    /** waitForScripts(), and lets the two seconds pass that the module takes afterwards. */
    void passModuleDelay();

    /** All that the daemon has announced since the last look, once it has settled. */
    QStringList announced();

    /** Calls that ConnMan got since the last look, without the mere questions. */
    QStringList orders();

    /** A change of the link state as the recorder shows it. */
    static QString state(const char *interface, const QString &path, const char *name);

    /** A Wi-Fi network as ConnMan lists it: at networkPath(@p name), psk, of strength 70. */
    static ListedObject network(const QString &name, const QString &serviceState);
    static QString networkPath(const QString &name);

    /** The records of the Wi-Fi trace: "method OP:operation state network". */
    static QStringList trace();

    /** Waits until the trace has that many records of @p method. */
    static bool waitForTrace(const QString &method, int count = 1);

protected Q_SLOTS:
    void init();
    void cleanup();
};

#endif
