#include "technologywatch.h"

#include "connman.h"

#include <QDBusConnection>

TechnologyWatch::TechnologyWatch(const QString &technology)
{
    connman::watchProperties(connman::technologyPath(technology), connman::technologyInterface,
                             this, SLOT(technologyPropertyChangedSlot(QString, QDBusVariant)));
    QDBusConnection::systemBus().connect(
        connman::serviceName, connman::managerPath, connman::managerInterface,
        QStringLiteral("ServicesChanged"), this, SLOT(servicesChangedSlot()));
}

void TechnologyWatch::technologyPropertyChangedSlot(const QString &name, const QDBusVariant &value)
{
    const bool isPowered = name == QStringLiteral("Powered");
    if (isPowered && connman::isFlag(value.variant(), true))
        Q_EMIT happened(LinkEvent::TechnologyOn);
    else if (isPowered && connman::isFlag(value.variant(), false))
        Q_EMIT happened(LinkEvent::TechnologyOff);
    else if (name == QStringLiteral("Connected") && connman::isFlag(value.variant(), true))
        Q_EMIT happened(LinkEvent::TechnologyConnected);
    else
        Q_EMIT happened(LinkEvent::TechnologyOther);
}

// Takes no argument, so that a signal with any arguments triggers it.
void TechnologyWatch::servicesChangedSlot()
{
    Q_EMIT happened(LinkEvent::ServicesChanged);
}
