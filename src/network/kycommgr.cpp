#include "kycommgr.h"

#include "connman.h"

KyComMgr::KyComMgr(QObject *parent) : QObject(parent), m_ethernet(parent)
{
    connman::registerTypes();
}
