#include "kyusermgr.h"

#include "arguments.h"
#include "error.h"
#include "profiles.h"

#include <QDebug>

using profiles::Outcome;

namespace
{
const ErrorText getUserErrors[] = {
    {Error::Read, "Not able to read the current user."},
};

const ErrorText setUserErrors[] = {
    {Error::InvalidArgument, "User name is invalid."},
    // The reply when a profile directory cannot be rebuilt.
    {Error::Process, "Error while forcing a reload of the user configurations."},
    {Error::Write, "Not able to overwrite the current user symlink."},
};

const ErrorText factoryResetErrors[] = {
    {Error::InvalidArgument, "User name is invalid."},
    {Error::Process, "Was not able to erase previous configuration"},
    {Error::Write, "The copy of the default folder did not went as expected"},
};
} // namespace

const QString &KyUserMgr::M_userFolderPath = profiles::directoryPath;
const QString &KyUserMgr::M_userFolderSuffix = profiles::directorySuffix;
const QString &KyUserMgr::M_systemFileName = profiles::linkPath;
const QString &KyUserMgr::M_defaultFolder = profiles::defaultDirectory;

KyUserMgr::KyUserMgr(QObject *parent) : QDBusAbstractAdaptor(parent)
{
    const std::optional<QString> active = profiles::activeUser();
    if (!active)
        qDebug() << "Init of KyUsers failed: failed to get the current user";
    profiles::validateUsers();

    if (active && profiles::isValidUser(*active))
        return;
    for (const QString &user : profiles::users) {
        if (switchUser(user) == Error::None)
            return;
    }
}

QString KyUserMgr::getUser(const QDBusMessage &message)
{
    if (!hasNoArguments(message))
        return QString();
    const std::optional<QString> active = profiles::activeUser();
    reportFailure(active ? Error::None : Error::Read, getUserErrors, message);
    return active.value_or(QString());
}

void KyUserMgr::setUser(QString user, const QDBusMessage &message)
{
    reportFailure(switchUser(user), setUserErrors, message);
}

void KyUserMgr::factoryReset(QString user, const QDBusMessage &message)
{
    if (!profiles::isValidUser(user)) {
        reportFailure(Error::InvalidArgument, factoryResetErrors, message);
        return;
    }
    Q_EMIT changingUser();
    const Outcome rebuilt = profiles::rebuild(user);
    if (rebuilt == Outcome::Done)
        Q_EMIT userChanged(user);
    else
        reportFailure(rebuilt == Outcome::NotErased ? Error::Process : Error::Write,
                      factoryResetErrors, message);
}

/** Returns Error::None, InvalidArgument, Process or Write; the last two make @p user invalid. */
int KyUserMgr::switchUser(const QString &user)
{
    if (!profiles::isValidUser(user))
        return Error::InvalidArgument;
    if (profiles::activeUser() == user)
        return Error::None;

    Q_EMIT changingUser();
    const Outcome outcome = profiles::activate(user);
    if (outcome == Outcome::Done) {
        Q_EMIT userChanged(user);
        return Error::None;
    }
    return outcome == Outcome::NotLinked ? Error::Write : Error::Process;
}
