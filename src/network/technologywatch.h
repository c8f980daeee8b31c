#ifndef TECHNOLOGYWATCH_H
#define TECHNOLOGYWATCH_H

#include "linkmachine.h"

#include <QDBusVariant>
#include <QObject>

/** Turns ConnMan's signals about one technology and the list of services into events. */
class TechnologyWatch : public QObject
{
    Q_OBJECT

public:
    /** Subscribes to the signals of @p technology, for example "ethernet". */
    explicit TechnologyWatch(const QString &technology);

Q_SIGNALS:
    /** A signal arrived: one of TechnologyOn ... TechnologyOther, or ServicesChanged. */
    void happened(LinkEvent event);

private Q_SLOTS:
    void technologyPropertyChangedSlot(const QString &name, const QDBusVariant &value);
    void servicesChangedSlot();
};

#endif
