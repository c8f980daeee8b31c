#ifndef PROFILES_H
#define PROFILES_H

#include <QString>

#include <optional>

/*
 * The user profiles as they are in the file system and in the settings: which one is active, which
 * ones may be used, and making one active or new. Users are named "user1" to "user4".
 */

namespace profiles
{
/** Directory of all profile folders and of the link; expected to exist. */
extern const QString directoryPath;
/** Suffix of a profile folder's name. */
extern const QString directorySuffix;
/** The link to the active profile folder. */
extern const QString linkPath;
/** The factory default profile, source of every reset; never written. */
extern const QString defaultDirectory;

/** The users, in the order in which a start tries them. */
constexpr int userCount = 4;
extern const QString users[userCount];

/** How making a profile active, or new, ends. */
enum class Outcome {
    Done,
    /** The old content cannot be removed. */
    NotErased,
    /** The default profile cannot be copied. */
    NotCopied,
    /** The link to the active profile cannot be made. */
    NotLinked,
};

/** The user whose directory the link names, who need not be a valid one; nothing without a link. */
std::optional<QString> activeUser();

/** Whether @p user is one of the four whose last switch, if there was one, succeeded. */
bool isValidUser(const QString &user);

/** Makes every user valid. */
void validateUsers();

/**
 * Makes the profile of @p user, who is valid, the active one; its directory is rebuilt from the
 * default profile where it is incomplete. The user becomes invalid where that fails.
 */
Outcome activate(const QString &user);

/**
 * Replaces the content of the profile folder of @p user by a copy of the default profile. Erases
 * only when the replacement is readable and survives it.
 */
Outcome rebuild(const QString &user);
} // namespace profiles

#endif
