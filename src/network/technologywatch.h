#ifndef TECHNOLOGYWATCH_H
#define TECHNOLOGYWATCH_H

#include "linkmachine.h"

#include <QDBusVariant>
#include <QObject>

/** What ConnMan tells about one technology and about the list of services. */
class TechnologyWatch : public QObject
{
    Q_OBJECT

public:
    /** Subscribes to the signals of @p technology, as in "ethernet". */
    explicit TechnologyWatch(const QString &technology);

Q_SIGNALS:
    /** A signal has come: one of TechnologyOn ... TechnologyOther, or ServicesChanged. */
    void happened(LinkEvent event);

private Q_SLOTS:
    void technologyPropertyChangedSlot(const QString &name, const QDBusVariant &value);
    void servicesChangedSlot();
};

#endif
