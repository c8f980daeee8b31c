#ifndef ETHERNETLINK_H
#define ETHERNETLINK_H

#include "linkdriver.h"
#include "technologywatch.h"

/** Carries out the actions that are specific to the wired interface. */
class EthernetLink : public LinkDriver
{
    Q_OBJECT

public:
    /** Subscribes to ConnMan's signals. */
    explicit EthernetLink(LinkParts &parts);

    /** Powers the technology off. */
    void start() { handle(LinkEvent::Started); }

protected:
    LinkEvent perform(LinkAction action) override;
    bool hasAddress(const QVariantMap &ipv4) const override;

private:
    void handleServiceProperty(const QString &name, const QVariant &value);

    TechnologyWatch m_watch;
};

#endif
