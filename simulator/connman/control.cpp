#include "control.h"

#include "calls.h"
#include "connman.h"
#include "lively.h"
#include "reply.h"

#include <QDBusArgument>
#include <QDBusConnection>

const QString Control::path = QStringLiteral("/standin");
const QString Control::interface = QStringLiteral("com.orvendis.Strandel.ConnManStandIn");

/*
 * In a rule, a call is the beginning of a journal line: "Technology.SetProperty" matches every such
 * call, "Technology.SetProperty /net/connman/technology/wifi" only those of that technology.
 */
const Control::Method Control::methods[] = {
    // Sets ConnMan's state without signals.
    {"SetTechnologies", "a(oa{sv})", false, &Control::setTechnologies},
    {"SetServices", "a(oa{sv})", false, &Control::setServices},
    {"SetAsyncScan", "b", false, &Control::setAsyncScan},
    {"StoreProperty", "osv", false, &Control::storeProperty},
    // Sets one property of a service or a technology, and sends its PropertyChanged.
    {"ChangeProperty", "osv", false, &Control::changeProperty},
    {"AnnounceServices", "", false, &Control::announceServices},
    // Arguments: path, interface and name of any signal, and its values.
    {"SendSignal", "oss", true, &Control::sendSignal},
    // Arguments of Fail: a call, and the name and text of its error.
    // Arguments of Reply: a call, and the values of its reply.
    {"Fail", "sss", false, &Control::fail},
    {"Reply", "s", true, &Control::reply},
    // Arguments of Delay: a call and its delay in milliseconds. Hold delays until Release.
    {"Delay", "su", false, &Control::delay},
    {"Hold", "s", false, &Control::hold},
    {"Release", "s", false, &Control::release},
    {"ClearRules", "", false, &Control::clearRules},
    // Arguments: a service, and the fields that Connect requests from the agent before it replies.
    {"AskOnConnect", "oa{sv}", false, &Control::askOnConnect},
    // Calls the agent registered last, and replies as the agent does. Arguments: the method and
    // its arguments.
    {"CallAgent", "s", true, &Control::callAgent},
    // SetLively makes the stand-in act by itself, see Lively. Surroundings are cables and networks,
    // whose technology must exist; SetPassphrase sets the passphrase of a network.
    {"SetLively", "b", false, &Control::setLively},
    {"AddSurrounding", "oa{sv}", false, &Control::addSurrounding},
    {"RemoveSurrounding", "o", false, &Control::removeSurrounding},
    {"SetPassphrase", "os", false, &Control::setPassphrase},
    {"Journal", "", false, &Control::journal},
    {"ClearJournal", "", false, &Control::clearJournal},
};

void Control::drive(const QDBusMessage &call)
{
    for (const Method &method : methods) {
        const QLatin1String signature(method.signature);
        if (call.member() == QLatin1String(method.name) &&
            (method.open ? call.signature().startsWith(signature)
                         : call.signature() == signature)) {
            (this->*method.drive)(call);
            return;
        }
    }
    refuseUnknown(call, "UnknownMethod");
}

QString Control::description()
{
    QString text = QStringLiteral("<interface name=\"%1\">").arg(interface);
    for (const Method &method : methods)
        text += QStringLiteral("<method name=\"%1\"/>").arg(QLatin1String(method.name));
    return text + QStringLiteral("</interface>");
}

namespace
{
QString textArgument(const QDBusMessage &call, int index)
{
    return call.arguments().at(index).toString();
}

ListedObjects listArgument(const QDBusMessage &call)
{
    return qdbus_cast<ListedObjects>(call.arguments().at(0).value<QDBusArgument>());
}

CallRule ruleFor(const QDBusMessage &call, CallRule::Kind kind)
{
    CallRule rule;
    rule.kind = kind;
    rule.call = textArgument(call, 0);
    return rule;
}

void answerFound(const QDBusMessage &call, bool found)
{
    if (found)
        answer(call);
    else
        refuse(call, Control::interface + QStringLiteral(".NotFound"),
               QStringLiteral("nothing at ") + pathArgument(call));
}
} // namespace

void Control::setTechnologies(const QDBusMessage &call)
{
    m_connman.setTechnologies(listArgument(call));
    answer(call);
}

void Control::setServices(const QDBusMessage &call)
{
    m_connman.setServices(listArgument(call));
    answer(call);
}

void Control::setAsyncScan(const QDBusMessage &call)
{
    m_connman.setAsyncScan(call.arguments().at(0).toBool());
    answer(call);
}

void Control::storeProperty(const QDBusMessage &call)
{
    answerFound(call, m_connman.storeProperty(pathArgument(call), textArgument(call, 1),
                                              withoutVariant(call.arguments().at(2))));
}

void Control::changeProperty(const QDBusMessage &call)
{
    const QString name = textArgument(call, 1);
    answerFound(call, m_connman.storeProperty(pathArgument(call), name,
                                              withoutVariant(call.arguments().at(2))) &&
                          m_connman.announceProperty(pathArgument(call), name));
}

void Control::announceServices(const QDBusMessage &call)
{
    m_connman.announceServices();
    answer(call);
}

void Control::sendSignal(const QDBusMessage &call)
{
    QDBusMessage signal = QDBusMessage::createSignal(pathArgument(call), textArgument(call, 1),
                                                     textArgument(call, 2));
    signal.setArguments(call.arguments().mid(3));
    QDBusConnection::systemBus().send(signal);
    answer(call);
}

void Control::fail(const QDBusMessage &call)
{
    CallRule rule = ruleFor(call, CallRule::Fail);
    rule.errorName = textArgument(call, 1);
    rule.errorText = textArgument(call, 2);
    m_calls.rules().add(rule);
    answer(call);
}

void Control::reply(const QDBusMessage &call)
{
    CallRule rule = ruleFor(call, CallRule::Reply);
    rule.values = call.arguments().mid(1);
    m_calls.rules().add(rule);
    answer(call);
}

void Control::delay(const QDBusMessage &call)
{
    CallRule rule = ruleFor(call, CallRule::Delay);
    rule.milliseconds = call.arguments().at(1).toInt();
    m_calls.rules().add(rule);
    answer(call);
}

void Control::hold(const QDBusMessage &call)
{
    m_calls.rules().add(ruleFor(call, CallRule::Hold));
    answer(call);
}

void Control::release(const QDBusMessage &call)
{
    m_calls.release(textArgument(call, 0));
    answer(call);
}

void Control::clearRules(const QDBusMessage &call)
{
    m_calls.rules().clear();
    answer(call);
}

void Control::askOnConnect(const QDBusMessage &call)
{
    m_connman.askOnConnect(pathArgument(call), mapOf(call.arguments().at(1)));
    answer(call);
}

void Control::callAgent(const QDBusMessage &call)
{
    const QString connection = m_connman.agents().latest();
    if (connection.isEmpty()) {
        refuse(call, interface + QStringLiteral(".NoAgent"),
               QStringLiteral("no agent is registered"));
        return;
    }
    m_connman.agents().call(connection, textArgument(call, 0), call.arguments().mid(1),
                            [call](const QDBusMessage &reply) {
                                if (reply.type() == QDBusMessage::ReplyMessage)
                                    answer(call, reply.arguments());
                                else
                                    refuse(call, reply.errorName(), reply.errorMessage());
                            });
}

void Control::setLively(const QDBusMessage &call)
{
    m_connman.setBehaviour(call.arguments().at(0).toBool() ? &m_lively : nullptr);
    answer(call);
}

void Control::addSurrounding(const QDBusMessage &call)
{
    m_lively.add({QDBusObjectPath(pathArgument(call)), mapOf(call.arguments().at(1))});
    answer(call);
}

void Control::removeSurrounding(const QDBusMessage &call)
{
    m_lively.remove(pathArgument(call));
    answer(call);
}

void Control::setPassphrase(const QDBusMessage &call)
{
    m_lively.setPassphrase(pathArgument(call), textArgument(call, 1));
    answer(call);
}

void Control::journal(const QDBusMessage &call)
{
    answer(call, {m_calls.journal()});
}

void Control::clearJournal(const QDBusMessage &call)
{
    m_calls.clearJournal();
    answer(call);
}
