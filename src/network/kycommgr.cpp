#include "kycommgr.h"

#include "connman.h"

KyComMgr::KyComMgr(QObject *parent)
    : QObject(parent), m_ethernet(parent), m_wifi(parent), m_wifiAp(parent)
{
    connman::registerTypes();
}
