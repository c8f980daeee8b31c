#include "kycommgr.h"

KyComMgr::KyComMgr(QObject *parent) : QObject(parent) {}
