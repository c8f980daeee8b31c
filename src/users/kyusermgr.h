#ifndef KYUSERMGR_H
#define KYUSERMGR_H

#include "introspection/Users.h"

#include <QDBusAbstractAdaptor>
#include <QString>

class QDBusMessage;

/**
 * The user profiles: which of the four profile directories is active, switching to another one, and
 * resetting one to the factory default.
 *
 * The active profile is the target of a symbolic link, through which the rest of the instrument
 * reads its configuration. Users are named "user1" to "user4". A failed switch to a user makes this
 * user invalid until the next start.
 */
class KyUserMgr : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.BoardManager.Users")
    Q_CLASSINFO("D-Bus Introspection", INTROSPECTION_USERS)

public:
    /** Aliases of the paths in profiles.h. */
    static const QString &M_userFolderPath;
    static const QString &M_userFolderSuffix;
    static const QString &M_systemFileName;
    static const QString &M_defaultFolder;

    /**
     * Makes every user valid. If the link names no valid user, activates the first profile that can
     * be activated.
     */
    explicit KyUserMgr(QObject *parent);

public Q_SLOTS:
    /**
     * Returns the name of the active user, taken from the link. This user may be invalid.
     *
     * Error::m_read if there is no link.
     */
    QString getUser(const QDBusMessage &message);

    /**
     * Makes @p user's profile the active one. Rebuilds an incomplete profile from the default one
     * first.
     *
     * Error::m_invalidArgument for an invalid user, Error::m_process if the profile directory
     * cannot be rebuilt, Error::m_write if the link cannot be made.
     */
    void setUser(QString user, const QDBusMessage &message);

    /**
     * Replaces the content of @p user's profile directory by a copy of the default profile.
     *
     * Error::m_invalidArgument for an invalid user, Error::m_process if the old content cannot be
     * removed, Error::m_write if the copy fails.
     */
    void factoryReset(QString user, const QDBusMessage &message);

Q_SIGNALS:
    /** The daemon accepted a switch or a reset and has not changed any file yet. */
    void changingUser();

    /** A switch to @p user, or a reset of the profile of @p user, is complete. */
    void userChanged(QString user);

private:
    int switchUser(const QString &user);
};

#endif
