#ifndef BUS_H
#define BUS_H

#include <QDBusConnection>
#include <QDBusMessage>
#include <QString>
#include <QVariant>

extern const QString daemonService;

/** The paths of the daemon's objects. */
constexpr char configPath[] = "/KyConfigMgr";
constexpr char comPath[] = "/KyComMgr";
constexpr char devicePath[] = "/KyDeviceMgr";

/** The exit statuses of kyboardctl. */
enum ExitStatus {
    Success = 0,
    DaemonError = 1,     ///< the daemon or the bus replied with an error
    BadUsage = 2,        ///< wrong command line; nothing was sent
    DaemonAway = 3,      ///< no bus, or the daemon is not on it
    InterfaceAbsent = 4, ///< this model has no such interface
    OutcomeFailed = 5,   ///< the operation ended in "failure"
    OutcomeMissing = 6,  ///< no reply, or no outcome of the operation, in time
    OutputLost = 7,      ///< the call succeeded, but standard output is not writable
    NothingThere = 8,    ///< no value: not connected, no such hardware
    NotConfirmed = 9,    ///< a destructive command was not confirmed; nothing was sent
    RecordInvalid = 10,  ///< a record in the EEPROM is invalid
    SignalsMissing = 11, ///< the expected signals did not arrive in time
};

/** The reply to a call: its plain values, or the reason why there are none. */
struct Answer {
    ExitStatus status;
    QVariantList values;
    /** The failure in one sentence. */
    QString complaint;
    /** The name and the text of the D-Bus error. */
    QString errorName;
    QString errorText;

    bool isGood() const { return status == Success; }
    /** The unmodified D-Bus error. */
    QString detail() const { return errorName + QStringLiteral(": ") + errorText; }
};

/** Selects the bus at @p address instead of the system bus; call it first. */
void selectBus(const QString &address);

/**
 * Selects the system bus of another machine; call it first.
 *
 * @param host HOST or USER@HOST, as for ssh
 */
void selectHost(const QString &host);

/** The selected bus; connected at the first call. */
QDBusConnection bus();

/** Sets the timeout of all further calls; a minute by default. */
void setCallTimeout(int seconds);

/** Returns a good answer if the bus can be reached and the daemon is on it. */
Answer findDaemon();

/** Calls a method of the daemon and waits for its reply. */
Answer call(const QString &path, const QString &interface, const QString &method,
            const QVariantList &arguments = {});

/** Reads a property of the daemon. */
Answer readProperty(const QString &path, const QString &interface, const QString &property);

/**
 * Sends any call and waits for its reply.
 *
 * @param reply gets the unmodified reply, unless null
 */
Answer send(const QDBusMessage &message, QDBusMessage *reply = nullptr);

/** Connects a slot that takes the message to signals; an empty @p signal means all. */
bool subscribe(const QString &path, const QString &interface, const QString &signal,
               QObject *receiver, const char *slot);

#endif
