#include "kydevicemgr.h"

KyDeviceMgr::KyDeviceMgr(QObject *parent) : QObject(parent) {}
