#ifndef CONNMANSTANDIN_H
#define CONNMANSTANDIN_H

#include "listedobject.h"

#include <QDBusMessage>
#include <QProcess>
#include <QStringList>

/**
 * The stand-in for ConnMan, a process named connmand that owns net.connman.
 *
 * It implements ConnMan's methods. By default, it sends only the signals that the test requests. A
 * lively stand-in (setLively()) acts like the real ConnMan. Every function returns after the
 * stand-in has carried out the request; a failure aborts the test program.
 *
 * A call is named by the beginning of its journal line: "Service.Connect" matches every such call,
 * "Service.Connect /net/connman/service/x" those of one service, and "Technology.SetProperty
 * /net/connman/technology/wifi (\"Powered\", <true>)" those with these values.
 */
class ConnmanStandIn
{
public:
    static const QString ethernetTechnology;
    static const QString wifiTechnology;

    ~ConnmanStandIn();

    /**
     * Starts it, without services and with both technologies powered off; waits for its bus name.
     *
     * @param program the name that pidof finds
     */
    void start(const QString &program = QStringLiteral("connmand"));

    /** Stops it as a shutdown does, or kills it; waits until its name has left the bus. */
    void stop();
    void kill();
    bool isRunning() const;

    /** Suspends it (SIGSTOP), or resumes it. */
    void freeze();
    void thaw();

    /** Replaces the list of services, or of technologies; sends no signal. */
    void setServices(const ListedObjects &services);
    void setTechnologies(const ListedObjects &technologies);

    /** Sets whether technologies have the method AsyncScan. The default is false. */
    void setAsyncScan(bool exists);

    /** Changes a property of a service or a technology and sends its PropertyChanged. */
    void setProperty(const QString &path, const QString &name, const QVariant &value);

    /** Changes a property like setProperty(), but sends no signal. */
    void storeProperty(const QString &path, const QString &name, const QVariant &value);

    /** Sends ServicesChanged with the current list. */
    void emitServicesChanged();

    /** Sends any signal, for example a malformed one. */
    void emitSignal(const QString &path, const QString &interface, const QString &name,
                    const QList<QVariant> &values);

    /** Answers @p call with an error and has no other effect. */
    void failMethod(const QString &call, const QString &errorName, const QString &text);

    /** Answers @p call with these values, of any type, and has no other effect. */
    void replyToMethod(const QString &call, const QList<QVariant> &values);

    /** Handles @p call only after this delay. */
    void delayMethod(const QString &call, uint milliseconds);

    /** Does not answer @p call until it is released. */
    void holdMethod(const QString &call);
    void releaseMethod(const QString &call);

    /** Ends all failures, replies, delays and holds. A call that is held now gets no answer. */
    void clearRules();

    /** From now on Connect of @p service asks the agent before it replies. */
    void askOnConnect(const QString &service, const QVariantMap &fields);

    /** Calls the agent that was registered last; returns its reply as renderReply() formats it. */
    QString requestInput(const QString &service, const QVariantMap &fields);
    QString reportError(const QString &service, const QString &error);
    QString callAgent(const QString &method, const QList<QVariant> &arguments);

    /** One field of RequestInput: {"Requirement": requirement}, and its "Type" if given. */
    static QVariantMap field(const QString &requirement, const QString &type = QString());

    /**
     * Sets whether the stand-in acts like the real ConnMan: it then lists the cables and networks
     * of addSurrounding() while their technology is powered, connects them and sends signals.
     */
    void setLively(bool lively);
    void addSurrounding(const ListedObject &service);
    void removeSurrounding(const QString &service);

    /** Sets the passphrase of a network. A network without one accepts every passphrase. */
    void setPassphrase(const QString &service, const QString &passphrase);

    /** The calls since the last clearJournal(), in order. */
    QStringList journal();
    void clearJournal();

    /** Waits until the journal has a call with this beginning. */
    bool waitForCall(const QString &call, int count = 1);

private:
    QDBusMessage drive(const QString &method, const QList<QVariant> &arguments = {});
    void waitForEnd();

    QProcess m_process;
};

#endif
