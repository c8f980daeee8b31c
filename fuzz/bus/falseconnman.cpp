#include "falseconnman.h"

#include "calls.h"
#include "wirevalue.h"

#include <cstring>

namespace
{
const char connmanName[] = "net.connman";

void appendVariant(DBusMessageIter &end, int type, const void *value)
{
    const char signature[] = {static_cast<char>(type), '\0'};
    DBusMessageIter inside;
    dbus_message_iter_open_container(&end, DBUS_TYPE_VARIANT, signature, &inside);
    dbus_message_iter_append_basic(&inside, type, value);
    dbus_message_iter_close_container(&end, &inside);
}

/** An entry of a property map, open for its value from the constructor to the destructor. */
class Entry
{
public:
    Entry(DBusMessageIter &map, const char *key) : m_map(map)
    {
        dbus_message_iter_open_container(&map, DBUS_TYPE_DICT_ENTRY, nullptr, &m_entry);
        dbus_message_iter_append_basic(&m_entry, DBUS_TYPE_STRING, &key);
    }
    ~Entry() { dbus_message_iter_close_container(&m_map, &m_entry); }
    Entry(const Entry &) = delete;
    Entry &operator=(const Entry &) = delete;

    DBusMessageIter &end() { return m_entry; }

private:
    DBusMessageIter &m_map;
    DBusMessageIter m_entry;
};

void addText(DBusMessageIter &map, const char *key, const char *value)
{
    appendVariant(Entry(map, key).end(), DBUS_TYPE_STRING, &value);
}

void addFlag(DBusMessageIter &map, const char *key, bool value)
{
    const dbus_bool_t flag = value;
    appendVariant(Entry(map, key).end(), DBUS_TYPE_BOOLEAN, &flag);
}

/** Adds the addresses of a service. */
void addAddresses(DBusMessageIter &map, const char *key)
{
    Entry entry(map, key);
    DBusMessageIter variant;
    DBusMessageIter inner;
    dbus_message_iter_open_container(&entry.end(), DBUS_TYPE_VARIANT, "a{sv}", &variant);
    dbus_message_iter_open_container(&variant, DBUS_TYPE_ARRAY, "{sv}", &inner);
    addText(inner, "Address", "10.0.0.7");
    addText(inner, "Netmask", "255.255.255.0");
    dbus_message_iter_close_container(&variant, &inner);
    dbus_message_iter_close_container(&entry.end(), &variant);
}

void addService(DBusMessageIter &map, const char *type, Choices &choices)
{
    static const char *const states[] = {"idle",  "failure", "association", "configuration",
                                         "ready", "online",  "disconnect",  "nonsense"};
    static const char *const names[] = {"Workshop", "user1", "", "wifi"};
    addText(map, "Type", type);
    if (!choices.oneIn(8))
        addText(map, "Name", choices.among(names));
    addText(map, "State", choices.among(states));
    if (choices.oneIn(2))
        addAddresses(map, "IPv4");
    if (choices.oneIn(2))
        addAddresses(map, "Ethernet");
    const unsigned char strength = static_cast<unsigned char>(choices.below(256));
    appendVariant(Entry(map, "Strength").end(), DBUS_TYPE_BYTE, &strength);
}

/** Appends a list of services or of technologies. Some of the entries are random values. */
void appendObjects(const Message &message, bool isOfServices, Choices &choices)
{
    ValueWriter writer(message.get(), choices);
    DBusMessageIter list;
    dbus_message_iter_open_container(&writer.end(), DBUS_TYPE_ARRAY, "(oa{sv})", &list);
    const std::string directory =
        isOfServices ? "/net/connman/service/" : "/net/connman/technology/";
    static const std::string types[] = {"ethernet", "wifi", "wifi"};
    for (std::uint32_t left = choices.below(5); left > 0; --left) {
        const std::string type = choices.among(types);
        const std::string path =
            directory + type + (isOfServices ? '_' + std::to_string(choices.below(3)) : "");
        const char *pathText = path.c_str();
        DBusMessageIter object;
        DBusMessageIter map;
        dbus_message_iter_open_container(&list, DBUS_TYPE_STRUCT, nullptr, &object);
        dbus_message_iter_append_basic(&object, DBUS_TYPE_OBJECT_PATH, &pathText);
        if (choices.oneIn(12)) {
            writer.appendValue(object, "a{sv}", 60);
        } else {
            dbus_message_iter_open_container(&object, DBUS_TYPE_ARRAY, "{sv}", &map);
            if (isOfServices) {
                addService(map, type.c_str(), choices);
            } else {
                addText(map, "Type", type.c_str());
                addFlag(map, "Powered", choices.oneIn(2));
                addFlag(map, "Connected", choices.oneIn(2));
            }
            dbus_message_iter_close_container(&object, &map);
        }
        dbus_message_iter_close_container(&list, &object);
    }
    dbus_message_iter_close_container(&writer.end(), &list);
}

/**
 * Returns the signal "PropertyChanged" of a technology or a service, usually in ConnMan's form.
 * Null if the signal cannot be sent.
 */
Message propertyChanged(Choices &choices)
{
    static const char *const names[] = {"Powered", "Connected", "State",
                                        "Error",   "Strength",  "IPv4"};
    static const std::string signatures[] = {"b", "s", "y", "a{sv}", "v", "as", "h"};
    const bool isService = choices.oneIn(2);
    const char *name = choices.among(names);
    Message signal(dbus_message_new_signal(
        anyPath(choices).c_str(), isService ? "net.connman.Service" : "net.connman.Technology",
        "PropertyChanged"));
    ValueWriter writer(signal.get(), choices);
    dbus_message_iter_append_basic(&writer.end(), DBUS_TYPE_STRING, &name);
    const std::string type = choices.oneIn(4) ? anyType(choices, 3) : choices.among(signatures);
    if (std::strcmp(name, "Powered") == 0 || std::strcmp(name, "Connected") == 0) {
        const dbus_bool_t flag = choices.oneIn(2);
        appendVariant(writer.end(), DBUS_TYPE_BOOLEAN, &flag);
        return signal;
    }
    DBusMessageIter inside;
    dbus_message_iter_open_container(&writer.end(), DBUS_TYPE_VARIANT, type.c_str(), &inside);
    writer.appendValue(inside, type, 60);
    dbus_message_iter_close_container(&writer.end(), &inside);
    return writer.isSendable() ? std::move(signal) : nullptr;
}

Message servicesChanged(Choices &choices)
{
    Message signal(dbus_message_new_signal("/", "net.connman.Manager", "ServicesChanged"));
    appendObjects(signal, true, choices);
    DBusMessageIter end;
    DBusMessageIter removed;
    dbus_message_iter_init_append(signal.get(), &end);
    dbus_message_iter_open_container(&end, DBUS_TYPE_ARRAY, "o", &removed);
    dbus_message_iter_close_container(&end, &removed);
    return signal;
}
} // namespace

FalseConnman::FalseConnman(std::uint64_t seed, bool isOftenSilent)
    : m_seed(seed), m_silence(isOftenSilent ? 1000 : 100000)
{
    appear();
}

void FalseConnman::appear()
{
    m_connection = std::make_unique<Connection>();
    m_late.clear();
    const Message request(dbus_message_new_method_call(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS,
                                                       DBUS_INTERFACE_DBUS, "RequestName"));
    const char *name = connmanName;
    const dbus_uint32_t flags = DBUS_NAME_FLAG_REPLACE_EXISTING;
    dbus_message_append_args(request.get(), DBUS_TYPE_STRING, &name, DBUS_TYPE_UINT32, &flags,
                             DBUS_TYPE_INVALID);
    m_connection->send(request);
    m_connection->flush();
}

void FalseConnman::work()
{
    if (!m_connection->flush())
        appear();
    while (const Message message = m_connection->take()) {
        if (dbus_message_get_type(message.get()) == DBUS_MESSAGE_TYPE_METHOD_CALL)
            answer(message);
    }
    while (!m_late.empty() && m_late.front().due <= Clock::now()) {
        m_connection->send(m_late.front().message);
        m_late.pop_front();
    }
    m_connection->flush();
}

void FalseConnman::act(Choices &choices, const Interfaces &interfaces)
{
    if (choices.oneIn(200)) {
        appear();
        return;
    }
    const std::uint32_t kind = choices.below(4);
    const Message signal = kind == 0   ? servicesChanged(choices)
                           : kind == 1 ? makeForgery(choices, interfaces)
                                       : propertyChanged(choices);
    if (signal)
        m_connection->send(signal);
}

/** Replies to @p call. The reply depends only on the seed and on the number of the call. */
void FalseConnman::answer(const Message &call)
{
    Choices choices = choicesOf(m_seed, 2, ++m_count);
    const bool isSilent = choices.below(m_silence) == 0;
    if (isSilent)
        return;
    const std::uint32_t kind = choices.below(20);
    Message reply = kind < 13   ? goodReply(call, choices)
                    : kind < 16 ? anyReply(call, choices)
                                : errorReply(call, choices);
    if (choices.oneIn(50)) {
        m_late.push_back(
            {Clock::now() + std::chrono::milliseconds(choices.below(30)), std::move(reply)});
        return;
    }
    m_connection->send(reply);
    if (choices.oneIn(20))
        m_connection->send(anyReply(call, choices));
}

Message FalseConnman::goodReply(const Message &call, Choices &choices)
{
    Message reply(dbus_message_new_method_return(call.get()));
    const std::string member = dbus_message_get_member(call.get());
    if (member == "GetServices" || member == "GetTechnologies")
        appendObjects(reply, member == "GetServices", choices);
    return reply;
}

Message FalseConnman::anyReply(const Message &call, Choices &choices)
{
    Message reply(dbus_message_new_method_return(call.get()));
    ValueWriter writer(reply.get(), choices);
    if (choices.oneIn(2))
        writer.append("a(oa{sv})");
    else
        writer.appendAnything();
    return writer.isSendable() ? std::move(reply) : errorReply(call, choices);
}

Message FalseConnman::errorReply(const Message &call, Choices &choices)
{
    static const char *const names[] = {"net.connman.Error.Failed",
                                        "net.connman.Error.InProgress",
                                        "net.connman.Error.AlreadyEnabled",
                                        "org.freedesktop.DBus.Error.NoReply",
                                        "org.freedesktop.DBus.Error.UnknownMethod",
                                        "x.y"};
    Message reply(
        dbus_message_new_error(call.get(), choices.among(names), choices.text(400).c_str()));
    if (choices.oneIn(4)) {
        ValueWriter writer(reply.get(), choices);
        writer.append("a{ss}");
    }
    return reply;
}
