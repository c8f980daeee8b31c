#ifndef CONTROL_H
#define CONTROL_H

#include <QDBusMessage>

class Calls;
class Connman;
class Lively;

/** The object through which tests and people control the stand-in. */
class Control
{
public:
    static const QString path;
    static const QString interface;

    Control(Connman &connman, Lively &lively, Calls &calls)
        : m_connman(connman), m_lively(lively), m_calls(calls)
    {
    }

    /** Carries out @p call and replies. */
    void drive(const QDBusMessage &call);

    /** The introspection data of the interface. */
    static QString description();

private:
    using Drive = void (Control::*)(const QDBusMessage &call);
    struct Method {
        const char *name;
        /** The types of the arguments; an open method accepts further arguments of any type. */
        const char *signature;
        bool open;
        Drive drive;
    };
    static const Method methods[];

    void setTechnologies(const QDBusMessage &call);
    void setServices(const QDBusMessage &call);
    void setAsyncScan(const QDBusMessage &call);
    void setLively(const QDBusMessage &call);
    void addSurrounding(const QDBusMessage &call);
    void removeSurrounding(const QDBusMessage &call);
    void setPassphrase(const QDBusMessage &call);
    void storeProperty(const QDBusMessage &call);
    void changeProperty(const QDBusMessage &call);
    void announceServices(const QDBusMessage &call);
    void sendSignal(const QDBusMessage &call);
    void fail(const QDBusMessage &call);
    void reply(const QDBusMessage &call);
    void delay(const QDBusMessage &call);
    void hold(const QDBusMessage &call);
    void release(const QDBusMessage &call);
    void clearRules(const QDBusMessage &call);
    void askOnConnect(const QDBusMessage &call);
    void callAgent(const QDBusMessage &call);
    void journal(const QDBusMessage &call);
    void clearJournal(const QDBusMessage &call);

    Connman &m_connman;
    Lively &m_lively;
    Calls &m_calls;
};

#endif
