#ifndef AGENTS_H
#define AGENTS_H

#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QMap>
#include <QObject>
#include <QString>

#include <functional>

/** The agents that are registered with ConnMan: at most one for each connection to the bus. */
class Agents : public QObject
{
    Q_OBJECT

public:
    using Answered = std::function<void(const QDBusMessage &answer)>;

    explicit Agents(QObject *parent);

    /** Registers an agent. Returns false if @p connection already has an agent. */
    bool add(const QString &connection, const QString &path);

    /** Removes an agent. Returns false if @p connection has no agent at @p path. */
    bool remove(const QString &connection, const QString &path);

    bool has(const QString &connection) const;

    /**
     * Returns the connection whose agent was registered last, or any connection with an agent if
     * that agent is gone. Empty without an agent.
     */
    QString latest() const;

    /** Calls a method of the agent of @p connection; passes the reply to @p answered. */
    void call(const QString &connection, const QString &method, const QList<QVariant> &arguments,
              const Answered &answered);

private:
    void forget(const QString &connection);

    QDBusServiceWatcher m_watcher;
    QMap<QString, QString> m_paths;
    QString m_latest;
};

#endif
