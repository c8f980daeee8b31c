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
constexpr char linkName[] = "system";

QString directoryOf(const QString &user)
{
    return directoryPath + user + directorySuffix;
}

bool isComplete(const QString &path)
{
    const Descriptor directory = openDirectory(path);
    return directory.isOpen() && isFolderComplete(openDirectory(defaultDirectory), directory);
}

/** Points the link to the active profile at @p directory; returns false on failure. */
bool makeLink(const QString &directory)
{
    const Descriptor place = openDirectory(directoryPath);
    // If the old link cannot be removed, creating the new one fails.
    unlinkat(place.get(), linkName, 0);
    return symlinkat(QFile::encodeName(directory).constData(), place.get(), linkName) == 0;
}

void storeValidity(const QString &user, bool isValid)
{
    Settings::instance().store(USER_STATE + user, isValid);
}
} // namespace

const QString directoryPath = QStringLiteral("/tmp/User_part/");
const QString directorySuffix = QStringLiteral("_profile");
const QString linkPath = directoryPath + QLatin1String(linkName);
const QString defaultDirectory = directoryPath + QStringLiteral("default_user") + directorySuffix;

const QString users[userCount] = {QStringLiteral("user1"), QStringLiteral("user2"),
                                  QStringLiteral("user3"), QStringLiteral("user4")};

std::optional<QString> activeUser()
{
    std::optional<QString> user = linkTarget(linkPath);
    if (user) {
        user->remove(directoryPath);
        user->remove(directorySuffix);
    }
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
    const QString path = directoryOf(user);
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
    const QString path = directoryOf(user);
    const Descriptor defaults = openDirectory(defaultDirectory);
    Descriptor directory = openDirectory(path);
    if (!canReplace(directory, defaults))
        return Outcome::NotCopied;
    makeIncomplete(directory, defaults);
    if (!eraseFolder(directory))
        return Outcome::NotErased;
    if (!directory.isOpen())
        directory = makeDirectory(path);
    return copyFolder(defaults, directory) ? Outcome::Done : Outcome::NotCopied;
}
} // namespace profiles
