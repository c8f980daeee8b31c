#include "kyusermgr.h"

#include "arguments.h"
#include "error.h"
#include "linktarget.h"
#include "profilefolder.h"
#include "settings.h"
#include "trustedpath.h"

#include <QDebug>
#include <QFile>

#include <unistd.h>

namespace
{
const char linkName[] = "system";

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

/**
 * Replaces the content of the directory @p path by a copy of the default profile. Erases only when
 * the replacement is readable and survives it.
 *
 * @return Error::None; Process where the old content cannot be removed, Write where the new one
 *         cannot be copied
 */
int rebuild(const QString &path)
{
    const Descriptor defaults = openDirectory(KyUserMgr::M_defaultFolder);
    Descriptor folder = openDirectory(path);
    if (!canReplace(folder, defaults))
        return Error::Write;
    makeIncomplete(folder, defaults);
    if (eraseFolder(folder) != Error::None)
        return Error::Process;
    if (!folder.isOpen())
        folder = makeDirectory(path);
    return copyFolder(defaults, folder);
}

/** Points the link to the active profile at @p folder; false where that fails. */
bool makeLink(const QString &folder)
{
    const Descriptor place = openDirectory(KyUserMgr::M_userFolderPath);
    // A link that cannot be removed shows when the new one is made.
    unlinkat(place.get(), linkName, 0);
    return symlinkat(QFile::encodeName(folder).constData(), place.get(), linkName) == 0;
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

const QString KyUserMgr::M_userFolderPath = QStringLiteral("/tmp/User_part/");
const QString KyUserMgr::M_userFolderSuffix = QStringLiteral("_profile");
const QString KyUserMgr::M_systemFileName = M_userFolderPath + QLatin1String(linkName);
const QString KyUserMgr::M_defaultFolder =
    M_userFolderPath + QStringLiteral("default_user") + M_userFolderSuffix;

KyUserMgr::KyUserMgr(QObject *parent) : QDBusAbstractAdaptor(parent)
{
    QString current;
    if (readCurrentUser(current) != Error::None)
        qDebug() << "Init of KyUsers failed: failed to get the current user";
    for (const QString &user : users)
        storeUsability(user, true);

    if (isValidUser(current))
        return;
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
    const QString path = folderOf(user);
    const Descriptor folder = openDirectory(path);
    const bool isUsable =
        folder.isOpen() && isFolderComplete(openDirectory(M_defaultFolder), folder);
    if (!isUsable && rebuild(path) != Error::None)
        return Error::Process;
    return makeLink(path) ? reloadUserConfiguration() : int(Error::Write);
}

/** Makes the rest of the instrument reload its configuration; nothing needs it to, so far. */
int KyUserMgr::reloadUserConfiguration()
{
    return Error::None;
}
