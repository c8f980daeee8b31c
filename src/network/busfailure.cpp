#include "busfailure.h"

#include "error.h"

#include <QDBusError>

void sendFailure(const QString &text, const QDBusMessage &message)
{
    sendErrorReply(QDBusError::errorString(QDBusError::Failed), text, message);
}
