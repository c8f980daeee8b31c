#ifndef BUSFACE_H
#define BUSFACE_H

#include "calls.h"
#include "connman.h"
#include "control.h"
#include "lively.h"

#include <QDBusVirtualObject>

/** The stand-in's objects on the bus: ConnMan's, and the one that controls the stand-in. */
class BusFace : public QDBusVirtualObject
{
    Q_OBJECT

public:
    BusFace();

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;
    QString introspect(const QString &path) const override;

private:
    Connman m_connman;
    Lively m_lively;
    Calls m_calls;
    Control m_control;
};

#endif
