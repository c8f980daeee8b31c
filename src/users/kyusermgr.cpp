#include "kyusermgr.h"

#include "arguments.h"
#include "error.h"
#include "linktarget.h"
#include "profilefolder.h"
#include "rebuildmark.h"
#include "settings.h"

#include <QDebug>
#include <QFile>
#include <QFileInfo>

const QString KyUserMgr::M_userFolderPath = QStringLiteral("/tmp/User_part/");
const QString KyUserMgr::M_userFolderSuffix = QStringLiteral("_profile");
const QString KyUserMgr::M_systemFileName = M_userFolderPath + QStringLiteral("system");
const QString KyUserMgr::M_defaultFolder =
    M_userFolderPath + QStringLiteral("default_user") + M_userFolderSuffix;

namespace
{
const QString users[] = {QStringLiteral("user1"), QStringLiteral("user2"), QStringLiteral("user3"),
                         QStringLiteral("user4")};

const ErrorText getUserErrors[] = {
    {Error::Read, "Not able to read the current user."},
};

const ErrorText setUserErrors[] = {
    {Error::InvalidArgument, "User name is invalid."},
    // Also the answer to a profile folder that cannot be rebuilt.
    {Error::Process, "Error while forcing a reload of the user configurations."},
    {Error::Write, "Not able to overwrite the current user symlink."},
};

const ErrorText rebuildErrors[] = {
    {Error::Process, "Was not able to erase previous configuration"},
    {Error::Write, "The copy of the default folder did not went as expected"},
};

const ErrorText factoryResetErrors[] = {
    {Error::Process, "Error while forcing a reload of the user configurations."},
};

QString folderOf(const QString &user)
{
    return KyUserMgr::M_userFolderPath + user + KyUserMgr::M_userFolderSuffix;
}

/** Nothing is erased that could not be replaced, and never the default profile itself. */
bool canReplace(const QString &folder)
{
    return isFolderReadable(KyUserMgr::M_defaultFolder) &&
           !isInsideEachOther(KyUserMgr::M_defaultFolder, folder);
}

/**
 * Replaces the content of @p folder by a copy of the default profile.
 *
 * @return Error::None; Process where the old content cannot be removed, Write where the new one
 *         cannot be copied
 */
int rebuild(const QString &folder)
{
    if (!canReplace(folder))
        return Error::Write;
    setRebuildMark(folder);
    int code = Error::None;
    if (eraseFolder(folder) != Error::None)
        code = Error::Process;
    else if (copyFolder(KyUserMgr::M_defaultFolder, folder) != Error::None)
        code = Error::Write;
    // Who asked for it learns of a failure, and may put a profile there by other means.
    clearRebuildMark(folder);
    return code;
}

QString usabilityKey(const QString &user)
{
    return USER_STATE + user;
}

void storeUsability(const QString &user, bool isUsable)
{
    Settings::instance().store(usabilityKey(user), isUsable);
}
} // namespace

KyUserMgr::KyUserMgr(QObject *parent) : QDBusAbstractAdaptor(parent)
{
    QString current;
    if (readCurrentUser(current) != Error::None)
        qDebug() << "Init of KyUsers failed: failed to get the current user";
    for (const QString &user : users)
        storeUsability(user, true);

    if (isValidUser(current)) {
        // The power was cut while it was being reset; a failure is tried again at the next start.
        const QString folder = folderOf(current);
        if (isRebuildMarked(folder) && rebuild(folder) != Error::None)
            setRebuildMark(folder);
        return;
    }
    for (const QString &user : users) {
        if (switchUser(user) == Error::None)
            return;
    }
}

QString KyUserMgr::getUser(const QDBusMessage &message)
{
    if (!hasNoArguments(message))
        return QString();
    QString user;
    const int code = readCurrentUser(user);
    if (code == Error::None)
        return user;
    sendErrorReply(code,
                   errorText(code, getUserErrors,
                             Q_FUNC_INFO +
                                 QStringLiteral("Unexpected error while getting the current user "
                                                "configuration. ") +
                                 unhandledError),
                   message);
    return QString();
}

void KyUserMgr::setUser(QString user, const QDBusMessage &message)
{
    const int code = switchUser(user);
    if (code == Error::None)
        return;
    sendErrorReply(code,
                   errorText(code, setUserErrors,
                             Q_FUNC_INFO +
                                 QStringLiteral("Unexpected error while reloading the user "
                                                "configuration. ") +
                                 unhandledError),
                   message);
}

void KyUserMgr::factoryReset(QString user, const QDBusMessage &message)
{
    if (!isValidUser(user)) {
        sendErrorReply(Error::InvalidArgument, QStringLiteral("User name is invalid."), message);
        return;
    }
    Q_EMIT changingUser();

    const int rebuilt = rebuild(folderOf(user));
    if (rebuilt != Error::None) {
        sendErrorReply(rebuilt, errorText(rebuilt, rebuildErrors, QString()), message);
        return;
    }

    QString current;
    if (readCurrentUser(current) == Error::None && current != user) {
        Q_EMIT userChanged(user);
        return;
    }
    const int reloaded = reloadUserConfiguration();
    if (reloaded == Error::None) {
        Q_EMIT userChanged(user);
        return;
    }
    sendErrorReply(reloaded,
                   errorText(reloaded, factoryResetErrors,
                             Q_FUNC_INFO +
                                 QStringLiteral("Unexpected error while reloading the user "
                                                "configuration. ") +
                                 unhandledError),
                   message);
}

/** Gives the name that the link's target stands for; Error::Read when there is no link. */
int KyUserMgr::readCurrentUser(QString &user) const
{
    user = linkTarget(M_systemFileName);
    if (user.isEmpty())
        return Error::Read;
    user.remove(M_userFolderPath);
    user.remove(M_userFolderSuffix);
    return Error::None;
}

bool KyUserMgr::isValidUser(const QString &user) const
{
    for (const QString &known : users) {
        if (user == known)
            return Settings::instance().value(usabilityKey(user), false).toBool();
    }
    return false;
}

/** Error::None, or InvalidArgument, Process or Write; only the latter two make @p user invalid. */
int KyUserMgr::switchUser(const QString &user)
{
    if (!isValidUser(user))
        return Error::InvalidArgument;
    QString current;
    if (readCurrentUser(current) == Error::None && current == user)
        return Error::None;

    Q_EMIT changingUser();
    const int code = activate(user);
    storeUsability(user, code == Error::None);
    if (code == Error::None)
        Q_EMIT userChanged(user);
    return code;
}

/** Rebuilds @p user's folder where it is incomplete and points the link at it. */
int KyUserMgr::activate(const QString &user)
{
    const QString folder = folderOf(user);
    const bool isUsable = QFileInfo(folder).isDir() && !isRebuildMarked(folder) &&
                          isFolderComplete(M_defaultFolder, folder);
    if (!isUsable && rebuild(folder) != Error::None)
        return Error::Process;

    // A link that cannot be removed shows when the new one is made.
    QFile::remove(M_systemFileName);
    if (!QFile::link(folder, M_systemFileName))
        return Error::Write;
    return reloadUserConfiguration();
}

/** Makes the rest of the instrument reload its configuration; nothing needs it to, so far. */
int KyUserMgr::reloadUserConfiguration()
{
    return Error::None;
}
