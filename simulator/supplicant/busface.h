#ifndef BUSFACE_H
#define BUSFACE_H

#include "supplicant.h"

#include <QDBusVirtualObject>

/** Serves the D-Bus objects of the stand-in for wpa_supplicant. */
class BusFace : public QDBusVirtualObject
{
    Q_OBJECT

public:
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;
    QString introspect(const QString &path) const override;

private:
    QVariantMap properties(const QString &path, const QString &interface) const;
    bool handleProperties(const QDBusMessage &call, const QDBusConnection &connection) const;

    Supplicant m_supplicant;
};

#endif
