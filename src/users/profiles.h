#ifndef PROFILES_H
#define PROFILES_H

#include <QString>

#include <optional>

/*
 * The user profiles in the file system and in the settings: which one is active, which ones are
 * valid, and how to activate or rebuild one. Users are named "user1" to "user4".
 */

namespace profiles
{
/**
 * The directory that contains the profile directories and the link to the active one; expected to
 * exist.
 */
extern const QString directoryPath;
/** Suffix of a profile directory's name. */
extern const QString directorySuffix;
/** The link to the active profile directory. */
extern const QString linkPath;
/** The factory default profile, source of every reset; never written. */
extern const QString defaultDirectory;

/** The users, in the order in which the daemon tries them at its start. */
constexpr int userCount = 4;
extern const QString users[userCount];

/** The result of activating or rebuilding a profile. */
enum class Outcome {
    Done,
    /** The old content cannot be removed. */
    NotErased,
    /** The default profile cannot be copied. */
    NotCopied,
    /** The link to the active profile cannot be made. */
    NotLinked,
};

/**
 * Returns the user that the target of the link (linkPath) names; the user may be invalid. Returns
 * nothing if there is no link.
 */
std::optional<QString> activeUser();

/**
 * Returns true if @p user is one of the four users, and no switch to this user has failed since
 * validateUsers().
 */
bool isValidUser(const QString &user);

/** Makes every user valid. */
void validateUsers();

/**
 * Makes the profile of @p user, who must be valid, the active one. Rebuilds an incomplete profile
 * from the default one first. The user becomes invalid on failure.
 */
Outcome activate(const QString &user);

/**
 * Replaces the content of the profile directory of @p user with a copy of the default profile.
 * Erases nothing if the default profile is unreadable, or if erasing the user's profile would also
 * erase the default profile (a link leads from one into the other).
 */
Outcome rebuild(const QString &user);
} // namespace profiles

#endif
