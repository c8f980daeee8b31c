#include "ethernetlink.h"

#include "busvalue.h"
#include "connman.h"
#include "ethernettable.h"
#include "ipv4repair.h"

EthernetLink::EthernetLink(LinkParts &parts)
    : LinkDriver(ethernetTable, parts), m_watch(parts.technology)
{
    connect(&m_watch, &TechnologyWatch::happened, this, [this](LinkEvent event) { handle(event); });
    connect(&parts.service, &ConnmanService::propertyChanged, this,
            &EthernetLink::handleServiceProperty);
}

LinkEvent EthernetLink::perform(LinkAction action)
{
    switch (action) {
    case LinkAction::AskService:
        return found(
            connman::findObject(connman::services(), QStringLiteral("Type"), m_parts.technology));
    case LinkAction::AskAddress:
        return hasAddress(m_parts.service.ipv4()) ? LinkEvent::AddressThere
                                                  : LinkEvent::AddressMissing;
    default:
        return LinkDriver::perform(action);
    }
}

bool EthernetLink::hasAddress(const QVariantMap &ipv4) const
{
    return isValidIPv4(ipv4.value(QStringLiteral("Address")).toString()) &&
           isValidIPv4(ipv4.value(QStringLiteral("Netmask")).toString());
}

void EthernetLink::handleServiceProperty(const QString &name, const QVariant &value)
{
    // Do not forward file descriptors: Qt D-Bus leaks each one that it sends.
    if (name != QStringLiteral("IPv4") || storableMap({{name, value}}).isEmpty())
        return;
    const QVariantMap ipv4 = toMap(value);
    const bool isComplete =
        ipv4.contains(QStringLiteral("Address")) && ipv4.contains(QStringLiteral("Netmask"));
    serviceChanged(isComplete ? LinkEvent::ServiceAddress : LinkEvent::ServiceIPv4, name, value);
}
