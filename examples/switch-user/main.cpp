#include <KyBoardManagerClient/boardmanager.h>
#include <KyBoardManagerClient/boardmanagerusers.h>

#include <QCoreApplication>

#include <iostream>

// switch-user NAME: activates another profile, and ends when the daemon announces the switch.
int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QString name = application.arguments().value(1);
    BoardManagerUsers users(BoardManager::service(), BoardManager::usersPath(),
                            QDBusConnection::systemBus());

    // The daemon announces nothing if that profile is already active.
    if (users.getUser().value() == name)
        return 0;
    QObject::connect(&users, &BoardManagerUsers::userChanged, &application,
                     [&](const QString &user) {
                         std::cout << "The active profile is that of " << qPrintable(user) << '\n';
                         application.quit();
                     });
    QDBusPendingReply<> reply = users.setUser(name);
    reply.waitForFinished();
    if (!reply.isError())
        return application.exec();
    std::cerr << qPrintable(reply.error().name()) << ": " << qPrintable(reply.error().message())
              << '\n';
    return 1;
}
