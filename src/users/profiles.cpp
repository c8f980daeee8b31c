#include "profiles.h"

#include "linktarget.h"
#include "profilefolder.h"
#include "settings.h"
#include "trustedpath.h"

#include <QFile>

#include <algorithm>
#include <iterator>
#include <unistd.h>

namespace profiles
{
namespace
{
const char linkName[] = "system";

QString folderOf(const QString &user)
{
    return folderPath + user + folderSuffix;
}

bool isComplete(const QString &path)
{
    const Descriptor folder = openDirectory(path);
    return folder.isOpen() && isFolderComplete(openDirectory(defaultFolder), folder);
}

/** Points the link to the active profile at @p folder; false where that fails. */
bool makeLink(const QString &folder)
{
    const Descriptor place = openDirectory(folderPath);
    // A link that cannot be removed shows when the new one is made.
    unlinkat(place.get(), linkName, 0);
    return symlinkat(QFile::encodeName(folder).constData(), place.get(), linkName) == 0;
}

void storeValidity(const QString &user, bool isValid)
{
    Settings::instance().store(USER_STATE + user, isValid);
}
} // namespace

const QString folderPath = QStringLiteral("/tmp/User_part/");
const QString folderSuffix = QStringLiteral("_profile");
const QString linkPath = folderPath + QLatin1String(linkName);
const QString defaultFolder = folderPath + QStringLiteral("default_user") + folderSuffix;

const QString users[userCount] = {QStringLiteral("user1"), QStringLiteral("user2"),
                                  QStringLiteral("user3"), QStringLiteral("user4")};

std::optional<QString> activeUser()
{
    QString user = linkTarget(linkPath);
    if (user.isEmpty())
        return std::nullopt;
    user.remove(folderPath);
    user.remove(folderSuffix);
    return user;
}

bool isValidUser(const QString &user)
{
    return std::find(std::begin(users), std::end(users), user) != std::end(users) &&
           Settings::instance().value(USER_STATE + user, false).toBool();
}

void validateUsers()
{
    for (const QString &user : users)
        storeValidity(user, true);
}

Outcome activate(const QString &user)
{
    const QString path = folderOf(user);
    Outcome outcome = Outcome::Done;
    if (!isComplete(path))
        outcome = rebuild(user);
    if (outcome == Outcome::Done && !makeLink(path))
        outcome = Outcome::NotLinked;
    storeValidity(user, outcome == Outcome::Done);
    return outcome;
}

Outcome rebuild(const QString &user)
{
    const QString path = folderOf(user);
    const Descriptor defaults = openDirectory(defaultFolder);
    Descriptor folder = openDirectory(path);
    if (!canReplace(folder, defaults))
        return Outcome::NotCopied;
    makeIncomplete(folder, defaults);
    if (!eraseFolder(folder))
        return Outcome::NotErased;
    if (!folder.isOpen())
        folder = makeDirectory(path);
    return copyFolder(defaults, folder) ? Outcome::Done : Outcome::NotCopied;
}
} // namespace profiles
