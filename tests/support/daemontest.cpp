#include "daemontest.h"

#include "board.h"

#include <QFile>

#include <cstdio>

QString DaemonTest::profile(const QString &user)
{
    return QStringLiteral("/tmp/User_part/") + user + QStringLiteral("_profile");
}

void DaemonTest::init()
{
    daemon.setWrapper({});
    daemon.resetEnvironment();
    for (const char *path : {"/opt/settings.ini", "/opt/settings.ini.lock", "/opt/KyApp",
                             "/tmp/User_part", "/tmp/logkywifi", "/etc/sw_version"})
        removePath(QString::fromLatin1(path));
    Board::reset();
    const QStringList directories = {QStringLiteral("default_user"), QStringLiteral("user1"),
                                     QStringLiteral("user2"), QStringLiteral("user3"),
                                     QStringLiteral("user4")};
    for (const QString &directory : directories) {
        writeFile(profile(directory) + QStringLiteral("/measure.conf"), directory.toUtf8());
        writeFile(profile(directory) + QStringLiteral("/display/theme.conf"), "dark");
    }
    QFile::link(profile(QStringLiteral("user1")), QStringLiteral("/tmp/User_part/system"));
}

void DaemonTest::cleanup()
{
    daemon.stop();
    if (QTest::currentTestFailed())
        static_cast<void>(std::fprintf(stderr,
                                       "---- the daemon's log ----\n%s---- its output ----\n%s"
                                       "---- the Wi-Fi trace ----\n%s----\n",
                                       qPrintable(daemon.log()), qPrintable(daemon.output()),
                                       readFile(QStringLiteral("/tmp/logkywifi")).constData()));
}
