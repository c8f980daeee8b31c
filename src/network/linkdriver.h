#ifndef LINKDRIVER_H
#define LINKDRIVER_H

#include "connman.h"
#include "linkmachine.h"
#include "linkparts.h"

#include <QDBusMessage>
#include <QDBusVariant>
#include <QObject>
#include <QTimer>

/** Carries out the actions that all network interfaces share. */
class LinkDriver : public QObject, protected LinkMachine
{
    Q_OBJECT

public:
    /** Handles a client's call; on failure replies to @p message with an error. */
    void call(LinkEvent event, const QDBusMessage &message,
              const QVariantMap &arguments = QVariantMap());

Q_SIGNALS:
    /** The link state ("State") or a property of the current service changed. */
    void propertyChanged(const QString &objectPath, const QString &name, const QDBusVariant &value);

protected:
    LinkDriver(const LinkTable &table, LinkParts &parts);

    LinkEvent perform(LinkAction action) override;
    void handled(LinkEvent event, bool isDecided) override;

    /** Returns true if @p ipv4, a service's "IPv4", counts as an address for this interface. */
    virtual bool hasAddress(const QVariantMap &ipv4) const;

    /** Handles @p event, a change of the current service's property @p name to @p value. */
    void serviceChanged(LinkEvent event, const QString &name, const QVariant &value);

    /**
     * Stores the path of @p service, the result of a search. @return ServiceListed or
     * NoServiceListed
     */
    LinkEvent found(const std::optional<ConnmanObject> &service);

    LinkParts &m_parts;
    /** The arguments of the current call. */
    QVariantMap m_arguments;
    /** The object path of the service that was found last. */
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
    /** ConnMan's text when it last refused to power the technology off. */
    QString m_refusal;
    QString m_changedName;
    QVariant m_changedValue;
    /** The timer that limits the attempt or scan in progress. */
    QTimer m_time;
};

#endif
