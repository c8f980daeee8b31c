#include "childsignal.h"

#include "kycommgr.h"
#include "kydevicemgr.h"
#include "kyusermgr.h"
#include "limitedmap.h"
#include "logging.h"
#include "receivelimits.h"
#include "slotcache.h"
#include "systemdwatchdog.h"
#include "terminationsignals.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusError>
#include <QDebug>

#include <csignal>
#include <cstdlib>

int main(int argc, char *argv[])
{
    logWithoutWaiting();
    catchTerminationSignals();
    if (signal(SIGCHLD, sig_handler) == SIG_ERR)
        qDebug() << "Can't catch SIGCHLD signal";

    QCoreApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Orvendis"));
    QCoreApplication::setApplicationName(QStringLiteral("KyBoardManager"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KYBOARDMANAGER_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Board manager of the Strandel."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.process(application);

    QDBusConnection bus = QDBusConnection::systemBus();
    liftReceiveLimits(bus);
    limitMaps();

    // Initialise hardware and network before clients can see the bus name.
    QObject configRoot;
    QObject deviceRoot;
    QObject comRoot;
    new KyUserMgr(&configRoot);
    new KyDeviceMgr(&deviceRoot);
    new KyComMgr(&comRoot);
    for (QObject *root : {&configRoot, &deviceRoot, &comRoot})
        limitSlotCaches(root);

    if (!bus.registerService(QStringLiteral("com.orvendis.Strandel.BoardManager"))) {
        qDebug() << bus.lastError().message();
        // Do not return: the destructors of the root objects would wait for the thread
        // KySdcardThread, which ends only after the next kernel event.
        std::exit(EXIT_FAILURE);
    }
    bus.registerObject(QStringLiteral("/KyConfigMgr"), &configRoot,
                       QDBusConnection::ExportAdaptors);
    bus.registerObject(QStringLiteral("/KyComMgr"), &comRoot, QDBusConnection::ExportAdaptors);
    bus.registerObject(QStringLiteral("/KyDeviceMgr"), &deviceRoot,
                       QDBusConnection::ExportAdaptors);

    const SystemdWatchdog watchdog;
    QCoreApplication::exec();
    return EXIT_SUCCESS;
}
