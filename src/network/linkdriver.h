#ifndef LINKDRIVER_H
#define LINKDRIVER_H

#include "linkmachine.h"
#include "linkparts.h"

#include <QDBusMessage>
#include <QDBusVariant>
#include <QObject>
#include <QTimer>

/** Carries out the actions that the machines of the network interfaces have in common. */
class LinkDriver : public QObject, protected LinkMachine
{
    Q_OBJECT

public:
    /** Handles a client's call; where it fails, @p message is answered with an error. */
    void call(LinkEvent event, const QDBusMessage &message,
              const QVariantMap &arguments = QVariantMap());

Q_SIGNALS:
    /** The link state ("State") or a property of the current service changed. */
    void propertyChanged(const QString &objectPath, const QString &name, const QDBusVariant &value);

protected:
    LinkDriver(const LinkTable &table, LinkParts &parts);

    LinkEvent perform(LinkAction action) override;
    void handled(LinkEvent event, bool isDecided) override;

    /** Whether @p ipv4, a service's "IPv4", holds what this interface counts as an address. */
    virtual bool hasAddress(const QVariantMap &ipv4) const;

    /** Handles @p event, a change of the current service's property @p name to @p value. */
    void serviceChanged(LinkEvent event, const QString &name, const QVariant &value);

    /** Takes the service at @p path for the one to use. @return whether there is one */
    LinkEvent found(const QString &path);

    LinkParts &m_parts;
    /** What the call that is being handled brought. */
    QVariantMap m_arguments;
    /** Object path of the service that was found last. */
    QString m_foundPath;

private:
    void announce();
    LinkEvent switchMode(const QString &mode);
    LinkEvent powerOn();
    LinkEvent powerOff();
    LinkEvent handOver();
    void reply(LinkAction action);
    void raiseAfter(int delayMs, LinkEvent event);

    QDBusMessage m_message;
    /** ConnMan's text of the last refusal to power the technology off. */
    QString m_refusal;
    QString m_changedName;
    QVariant m_changedValue;
    /** Bounds the attempt or the scan under way. */
    QTimer m_time;
};

#endif
