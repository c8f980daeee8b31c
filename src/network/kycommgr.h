#ifndef KYCOMMGR_H
#define KYCOMMGR_H

#include "kyethernet.h"
#include "kywifi.h"
#include "kywifiap.h"

#include <QObject>

/** The root of the network side: owns the Ethernet, Wi-Fi station and access-point adaptors. */
class KyComMgr : public QObject
{
    Q_OBJECT

public:
    explicit KyComMgr(QObject *parent);

private:
    KyEthernet m_ethernet;
    // Before the access point, which shares the module with it.
    KyWifi m_wifi;
    KyWifiAp m_wifiAp;
};

#endif
