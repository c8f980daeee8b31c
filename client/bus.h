#ifndef BUS_H
#define BUS_H

#include <QDBusConnection>
#include <QDBusMessage>
#include <QString>
#include <QVariant>

extern const QString daemonService;

/** What kyboardctl ends with. */
enum ExitStatus {
    Success = 0,
    DaemonError = 1,     ///< the daemon, or the bus, answered with an error
    BadUsage = 2,        ///< the command line was wrong; nothing was sent
    DaemonAway = 3,      ///< no bus, or the daemon is not on it
    InterfaceAbsent = 4, ///< this model of the instrument has no such interface
    OutcomeFailed = 5,   ///< what was started ended in failure
    OutcomeMissing = 6,  ///< no answer in time, or what was started did not come to an end in time
    OutputLost = 7,      ///< what was done cannot be told: the output takes nothing more
    NothingThere = 8,    ///< what was asked for is not there: not connected, no such hardware
    NotConfirmed = 9,    ///< what destroys something was not confirmed; nothing was sent
    RecordInvalid = 10,  ///< a record in the EEPROM is not valid
    SignalsMissing = 11, ///< the signals that were waited for did not come in time
};

/** The answer to a call: its plain values, or why there are none. */
struct Answer {
    ExitStatus status;
    QVariantList values;
    /** The failure in one sentence. */
    QString complaint;
    /** The name and the text of the error as the bus gave them. */
    QString errorName;
    QString errorText;

    bool isGood() const { return status == Success; }
    /** The error as the bus gave it. */
    QString detail() const { return errorName + QStringLiteral(": ") + errorText; }
};

/** Takes the bus at @p address in the place of the system bus, before anything else is called. */
void selectBus(const QString &address);

/**
 * Takes the system bus of another machine, before anything else is called.
 *
 * @param host as ssh takes it: HOST or USER@HOST
 */
void selectHost(const QString &host);

/** The bus that was selected; joined at the first call. */
QDBusConnection bus();

/** How long every call from now on waits for its answer; a minute where nothing is said. */
void setCallTimeout(int seconds);

/** A good answer where the bus can be joined and the daemon is on it. */
Answer findDaemon();

/** Calls a method of the daemon and waits for its reply. */
Answer call(const QString &path, const QString &interface, const QString &method,
            const QVariantList &arguments = {});

/** Reads a property of the daemon. */
Answer readProperty(const QString &path, const QString &interface, const QString &property);

/**
 * Sends any call, and waits for its reply.
 *
 * @param reply takes it as it came, where that is wanted
 */
Answer send(const QDBusMessage &message, QDBusMessage *reply = nullptr);

/** Subscribes a slot that takes the message to signals; an empty @p signal means all. */
bool subscribe(const QString &path, const QString &interface, const QString &signal,
               QObject *receiver, const char *slot);

#endif
