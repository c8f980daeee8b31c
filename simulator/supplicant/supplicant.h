#ifndef SUPPLICANT_H
#define SUPPLICANT_H

#include "air.h"
#include "station.h"

#include <QDBusMessage>

#include <memory>

/** The supplicant's main object: it has at most one interface, as the instrument has. */
class Supplicant
{
public:
    static const QString path;

    /** The interface; null before one was asked for. */
    Station *station() const { return m_station.get(); }

    /** Does what a call of the main object's own interface says and answers it. */
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
