#ifndef CONNMANSTANDIN_H
#define CONNMANSTANDIN_H

#include "listedobject.h"

#include <QDBusMessage>
#include <QProcess>
#include <QStringList>

/**
 * The stand-in for ConnMan, a process named connmand that owns net.connman.
 *
 * It serves ConnMan's methods and sends no signal unless told to, or unless it is lively. Every
 * function here returns when the stand-in has done what it says; one that cannot be done fails the
 * test's process.
 *
 * Where a call is to be named, the name is the beginning of its line in the journal:
 * "Service.Connect" is every such call, "Service.Connect /net/connman/service/x" that of one
 * service, and "Technology.SetProperty /net/connman/technology/wifi (\"Powered\", <true>)" is one
 * with its values.
 */
class ConnmanStandIn
{
public:
    static const QString ethernetTechnology;
    static const QString wifiTechnology;

    ~ConnmanStandIn();

    /**
     * Starts it, without services, with the two technologies powered off; waits for its name.
     *
     * @param program what pidof is to know it by
     */
    void start(const QString &program = QStringLiteral("connmand"));

    /** Ends it as at shutdown, or at once; waits until its name is gone from the bus. */
    void stop();
    void kill();
    bool isRunning() const;

    /** Suspends it (SIGSTOP), from when on it answers nothing, and lets it go on. */
    void freeze();
    void thaw();

    /** Replaces the lists; no signal is sent. */
    void setServices(const ListedObjects &services);
    void setTechnologies(const ListedObjects &technologies);

    /** Whether technologies have the method AsyncScan; they have not at start. */
    void setAsyncScan(bool exists);

    /** Changes a property of a service or a technology and sends its PropertyChanged. */
    void setProperty(const QString &path, const QString &name, const QVariant &value);

    /** The same without the signal. */
    void storeProperty(const QString &path, const QString &name, const QVariant &value);

    /** Sends ServicesChanged with the list as it is. */
    void emitServicesChanged();

    /** Sends any signal, such as a malformed one. */
    void emitSignal(const QString &path, const QString &interface, const QString &name,
                    const QList<QVariant> &values);

    /** Answers @p call with an error and does nothing else. */
    void failMethod(const QString &call, const QString &errorName, const QString &text);

    /** Answers @p call with these values, of whatever types, and does nothing else. */
    void replyToMethod(const QString &call, const QList<QVariant> &values);

    /** Serves @p call only after that time. */
    void delayMethod(const QString &call, uint milliseconds);

    /** Leaves @p call without an answer until it is released. */
    void holdMethod(const QString &call);
    void releaseMethod(const QString &call);

    /** Ends all failures, replies, delays and holds; calls held by now are never answered. */
    void clearRules();

    /** From now on Connect of @p service asks the agent before it answers. */
    void askOnConnect(const QString &service, const QVariantMap &fields);

    /** Calls the agent that was registered last; its answer as renderReply() shows it. */
    QString requestInput(const QString &service, const QVariantMap &fields);
    QString reportError(const QString &service, const QString &error);
    QString callAgent(const QString &method, const QList<QVariant> &arguments);

    /** One field of RequestInput: {"Requirement": requirement}, with its "Type" where given. */
    static QVariantMap field(const QString &requirement, const QString &type = QString());

    /**
     * From now on things happen by themselves as they do with the real one, to the cables and
     * networks that are added here; each is listed while its technology is powered.
     */
    void setLively(bool lively);
    void addSurrounding(const ListedObject &service);
    void removeSurrounding(const QString &service);

    /** The passphrase by which a lively network can be joined; without one any will do. */
    void setPassphrase(const QString &service, const QString &passphrase);

    /** The calls since the last clearJournal(), in order. */
    QStringList journal();
    void clearJournal();

    /** Waits until the journal holds a call that begins like this. */
    bool waitForCall(const QString &call, int count = 1);

private:
    QDBusMessage drive(const QString &method, const QList<QVariant> &arguments = {});
    void waitForEnd();

    QProcess m_process;
};

#endif
