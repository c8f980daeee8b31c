#ifndef BUSFAILURE_H
#define BUSFAILURE_H

#include <QString>

class QDBusMessage;

/** Answers @p message with the standard error of the bus, as the network's methods do. */
void sendFailure(const QString &text, const QDBusMessage &message);

#endif
