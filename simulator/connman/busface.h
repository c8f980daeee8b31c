#ifndef BUSFACE_H
#define BUSFACE_H

#include "calls.h"
#include "connman.h"
#include "control.h"
#include "lively.h"

#include <QDBusVirtualObject>

/** What the bus sees: ConnMan's objects, and the one by which the stand-in is driven. */
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
