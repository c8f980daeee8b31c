#ifndef LINKPARTS_H
#define LINKPARTS_H

#include "connmanservice.h"
#include "ipv4settings.h"
#include "modescript.h"

/** The parts that an adaptor of a network interface (KyTcpIp) shares with its LinkDriver. */
struct LinkParts {
    LinkParts(const QString &technologyName, const QString &interface, const QString &servicePath)
        : technology(technologyName), interfaceName(interface), service(servicePath)
    {
    }

    /** ConnMan's name of the technology, "ethernet" or "wifi". */
    const QString technology;
    /** The kernel's name of the network interface, for example "eth0". */
    const QString interfaceName;
    ConnmanService service;
    Ipv4Settings settings;
    ModeScript script;
};

#endif
