#include "still.h"

#include "connman.h"
#include "reply.h"

void Still::askOnConnect(const QString &service, const QVariantMap &fields)
{
    m_questions.insert(service, fields);
}

void Still::setPowered(const QDBusMessage &call, bool powered)
{
    m_connman.storeProperty(call.path(), QStringLiteral("Powered"), powered);
    answer(call);
}

void Still::setServiceProperty(const QDBusMessage &call, const QString &name, const QVariant &value)
{
    m_connman.storeProperty(call.path(), name, value);
    answer(call);
}

void Still::connectService(const QDBusMessage &call)
{
    Agents &agents = m_connman.agents();
    if (!m_questions.contains(call.path()) || !agents.has(call.service())) {
        answer(call);
        return;
    }
    const QList<QVariant> question = {QVariant::fromValue(QDBusObjectPath(call.path())),
                                      m_questions.value(call.path())};
    agents.call(call.service(), QStringLiteral("RequestInput"), question,
                [call](const QDBusMessage &reply) {
                    if (reply.type() == QDBusMessage::ReplyMessage)
                        answer(call);
                    else
                        refuse(call, "OperationAborted", "Operation aborted");
                });
}

void Still::disconnectService(const QDBusMessage &call)
{
    answer(call);
}

void Still::removeService(const QDBusMessage &call)
{
    answer(call);
}

void Still::scan(const QDBusMessage &call)
{
    answer(call);
}
