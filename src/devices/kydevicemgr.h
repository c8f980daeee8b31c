#ifndef KYDEVICEMGR_H
#define KYDEVICEMGR_H

#include <QObject>

/** The root of the device side: owns the adaptors of the board's devices. */
class KyDeviceMgr : public QObject
{
    Q_OBJECT

public:
    explicit KyDeviceMgr(QObject *parent);
};

#endif
