#ifndef ERROR_H
#define ERROR_H

#include "errorcode.h"

class QDBusMessage;

/**
 * Replies to @p message immediately with an error, on the system bus.
 *
 * Qt D-Bus still sends the slot's ordinary reply afterwards; callers ignore this second reply.
 *
 * @param code an Error::Code; any other number sends the name of Undefined
 * @param text the human-readable text of the reply
 */
void sendErrorReply(int code, const QString &text, const QDBusMessage &message);

/** The same with any D-Bus error name, for example net.connman.Agent.Error.Retry. */
void sendErrorReply(const QString &name, const QString &text, const QDBusMessage &message);

/**
 * Replies to @p message with the error of @p code, and with the text of @p code in @p table, a
 * method's table of failures. A code that is not in the table gets the text unhandledError. Sends
 * nothing if @p code is None.
 */
template <size_t Rows>
void reportFailure(int code, const ErrorText (&table)[Rows], const QDBusMessage &message)
{
    if (code != Error::None)
        sendErrorReply(code, errorText(code, table, QString::fromLatin1(unhandledError)), message);
}

#endif
