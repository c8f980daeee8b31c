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
    BadUsage = 2,        ///< the command line, or a file that it names, is wrong; nothing was sent
    DaemonAway = 3,      ///< no bus, or the daemon is not on it
    InterfaceAbsent = 4, ///< this model has no such interface
    OutcomeFailed = 5,   ///< the operation failed
    OutcomeMissing = 6,  ///< no reply, or no outcome of the operation, in time
    OutputLost = 7,      ///< the call succeeded, but stdout or the file cannot be written
    NothingThere = 8,    ///< no value: not connected, no such hardware
    NotConfirmed = 9,    ///< a destructive command was not confirmed; nothing was sent
    RecordInvalid = 10,  ///< a record in the EEPROM is invalid
    SignalsMissing = 11, ///< the expected signals did not arrive in time
};

/** The reply to a call: its values (see plainValue()), or an error. */
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

/** Selects the bus at @p address instead of the system bus. Call this function before bus(). */
void selectBus(const QString &address);

/**
 * Selects the system bus of another machine. Call this function before bus().
 *
 * @param host HOST or USER@HOST, as for ssh
 */
void selectHost(const QString &host);

/** Returns the selected bus. The first call of this function connects to it. */
QDBusConnection bus();

/** Sets the timeout of all further calls; a minute by default. */
void setCallTimeout(int seconds);

/**
 * Returns a good answer if the bus can be reached and the daemon owns its name; otherwise the
 * error.
 */
Answer findDaemon();

/** Calls a method of the daemon and waits for its reply. */
Answer call(const QString &path, const QString &interface, const QString &method,
            const QVariantList &arguments = {});

/** Reads a property of the daemon. */
Answer readProperty(const QString &path, const QString &interface, const QString &property);

/**
 * Sends @p message, a method call to any service, and waits for the reply.
 *
 * @param reply receives the unmodified reply; may be null
 */
Answer send(const QDBusMessage &message, QDBusMessage *reply = nullptr);

/**
 * Connects @p slot, which takes a QDBusMessage, to the signal @p signal of the daemon; to all
 * signals of @p interface if @p signal is empty. Returns false on failure.
 */
bool subscribe(const QString &path, const QString &interface, const QString &signal,
               QObject *receiver, const char *slot);

#endif
