#ifndef ERROR_H
#define ERROR_H

#include "errorcode.h"

class QDBusMessage;

/**
 * Answers @p message at once, on the system bus, with an error reply.
 *
 * The slot's ordinary reply still follows; callers act on the first reply that reaches them.
 *
 * @param code an Error::Code; any other number sends the name of Undefined
 * @param text the human-readable text of the reply
 */
void sendErrorReply(int code, const QString &text, const QDBusMessage &message);

/** The same with the D-Bus error name @p name, for interfaces whose names are not our own. */
void sendErrorReply(const QString &name, const QString &text, const QDBusMessage &message);

/**
 * Answers @p message with the error of @p code and its text in a method's table of failures, unless
 * the code is none. A code that the table does not hold goes with the sentence that asks for a bug
 * report.
 */
template <size_t Rows>
void reportFailure(int code, const ErrorText (&table)[Rows], const QDBusMessage &message)
{
    if (code != Error::None)
        sendErrorReply(code, errorText(code, table, QString::fromLatin1(unhandledError)), message);
}

#endif
