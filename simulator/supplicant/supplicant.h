#ifndef SUPPLICANT_H
#define SUPPLICANT_H

#include "air.h"
#include "station.h"

#include <QDBusMessage>

#include <memory>

/**
 * The main object of the stand-in for wpa_supplicant. It controls at most one network interface,
 * because the instrument has only one Wi-Fi interface.
 */
class Supplicant
{
public:
    static const QString path;

    /** The network interface; null until a client has created one. */
    Station *station() const { return m_station.get(); }

    /** Carries out and answers a call of the main object. */
    void receive(const QDBusMessage &call);

private:
    QDBusMessage getInterface(const QDBusMessage &call);
    QDBusMessage createInterface(const QDBusMessage &call);
    QDBusMessage removeInterface(const QDBusMessage &call);

    Air m_air;
    std::unique_ptr<Station> m_station;
    int m_lastStation = -1;
};

#endif
