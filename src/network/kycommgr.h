#ifndef KYCOMMGR_H
#define KYCOMMGR_H

#include "kyethernet.h"
#include "kywifi.h"
#include "kywifiap.h"

#include <QObject>

/** Owns the adaptors of Ethernet, the Wi-Fi station and the access point. */
class KyComMgr : public QObject
{
    Q_OBJECT

public:
    explicit KyComMgr(QObject *parent);

private:
    KyEthernet m_ethernet;
    // Initialised before the access point, which uses the same Wi-Fi module.
    KyWifi m_wifi;
    KyWifiAp m_wifiAp;
};

#endif
