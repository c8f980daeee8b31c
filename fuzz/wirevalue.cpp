#include "wirevalue.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace
{
const char basicTypes[] = {'y', 's', 'b', 'n', 'q', 'i', 'u', 'x', 't', 'd', 'o', 'g', 'h'};

/**
 * The bus's limit for the file descriptors in a message. The bus closes the connection of a sender
 * that exceeds this limit.
 */
constexpr int mostDescriptors = 16;

/** The maximum length of a message's signature. */
constexpr std::size_t longestSignature = 255;

/** The maximum depth of a message's containers. */
constexpr int mostLevels = 64;

/** The signatures that most methods and replies of D-Bus services have. */
const char *const usualTypes[] = {"s",  "a{sv}", "as", "av",        "ay",        "au",
                                  "ai", "at",    "aq", "a{sa{sv}}", "a(oa{sv})", "(oa{sv})"};

bool isBasic(const std::string &signature)
{
    return signature.size() == 1 && signature != "v";
}

std::string anyBasicType(Choices &choices)
{
    const char type = choices.among(basicTypes);
    // Replace most file descriptors by texts: otherwise almost every message would contain
    // descriptors.
    return std::string(1, type == 'h' && !choices.oneIn(4) ? 's' : type);
}

void append(DBusMessageIter &end, int type, const void *value)
{
    if (!dbus_message_iter_append_basic(&end, type, value))
        std::abort();
}

void appendText(DBusMessageIter &end, int type, const std::string &text)
{
    const char *characters = text.c_str();
    append(end, type, &characters);
}

/** Returns the depth of the containers in @p signature. */
int depthOf(const std::string &signature)
{
    int depth = 0;
    int deepest = 0;
    int arrays = 0;
    for (const char type : signature) {
        if (type == 'a')
            ++arrays;
        else if (type == '(' || type == '{')
            ++depth;
        else if (type == ')' || type == '}')
            --depth;
        deepest = std::max(deepest, depth);
    }
    return deepest + arrays;
}

} // namespace

std::vector<std::string> typesOf(const std::string &signature)
{
    std::vector<std::string> types;
    std::size_t start = 0;
    while (start < signature.size()) {
        std::size_t end = start;
        while (signature[end] == 'a')
            ++end;
        int open = 0;
        do {
            open += signature[end] == '(' || signature[end] == '{' ? 1 : 0;
            open -= signature[end] == ')' || signature[end] == '}' ? 1 : 0;
            ++end;
        } while (open > 0);
        types.push_back(signature.substr(start, end - start));
        start = end;
    }
    return types;
}

std::string anyType(Choices &choices, int depth)
{
    const std::uint32_t kind = depth <= 0 ? choices.below(2) : choices.below(6);
    switch (kind) {
    case 1:
        return depth <= 0 ? anyBasicType(choices) : choices.among(usualTypes);
    case 2:
        return "v";
    case 3:
        return 'a' + anyType(choices, depth - 1);
    case 4: {
        std::string members = anyType(choices, depth - 1);
        for (std::uint32_t left = choices.below(3); left > 0 && members.size() < 40; --left)
            members += anyType(choices, depth - 1);
        return '(' + members + ')';
    }
    case 5:
        return "a{" + anyBasicType(choices) + anyType(choices, depth - 1) + '}';
    default:
        return anyBasicType(choices);
    }
}

std::string deepType(Choices &choices)
{
    const std::size_t most = 32;
    const bool isOfArrays = !choices.oneIn(3);
    const bool isOfStructures = !isOfArrays || choices.oneIn(2);
    std::string type = anyBasicType(choices);
    if (isOfStructures)
        type = std::string(most, '(') + type + std::string(most, ')');
    if (isOfArrays)
        type.insert(0, most, 'a');
    return type;
}

std::string anyPath(Choices &choices)
{
    static const char *const paths[] = {
        "/",
        "/KyComMgr",
        "/KyComMgr/Agent",
        "/KyConfigMgr",
        "/KyDeviceMgr",
        "/KyDeviceMgr/x",
        "/net/connman",
        "/net/connman/service/ethernet_cable",
        "/net/connman/service/wifi_0_hidden_managed_psk",
        "/net/connman/service/wifi_1_managed_psk",
        "/net/connman/technology/ethernet",
        "/net/connman/technology/wifi",
        "/net/wap",
        "/org/freedesktop/DBus",
    };
    return choices.oneIn(50) ? '/' + std::string(1 + choices.below(2000), 'p')
                             : choices.among(paths);
}

ValueWriter::ValueWriter(DBusMessage *message, Choices &choices) : m_choices(choices)
{
    dbus_message_iter_init_append(message, &m_end);
}

void ValueWriter::append(const std::string &signature, int around)
{
    m_signatureSize += signature.size();
    if (m_signatureSize > longestSignature)
        return;
    for (const std::string &type : typesOf(signature))
        appendValue(m_end, type, mostLevels - around);
}

void ValueWriter::appendAnything()
{
    for (std::uint32_t left = m_choices.below(6); left > 0; --left)
        append(m_choices.oneIn(10) ? deepType(m_choices) : anyType(m_choices, 4));
}

bool ValueWriter::isSendable() const
{
    return m_descriptors <= mostDescriptors;
}

void ValueWriter::appendValue(DBusMessageIter &end, const std::string &signature, int room)
{
    if (isBasic(signature))
        appendBasic(end, signature[0]);
    else if (signature == "v")
        appendVariant(end, room);
    else if (signature[0] == 'a')
        appendArray(end, signature.substr(1), room);
    else
        appendMembers(end, signature[0] == '(' ? DBUS_TYPE_STRUCT : DBUS_TYPE_DICT_ENTRY,
                      signature.substr(1, signature.size() - 2), room);
}

void ValueWriter::appendBasic(DBusMessageIter &end, int type)
{
    switch (type) {
    case DBUS_TYPE_STRING:
        appendText(end, type, m_choices.oneIn(200) ? longText() : m_choices.text());
        return;
    case DBUS_TYPE_OBJECT_PATH:
        appendText(end, type, anyPath(m_choices));
        return;
    case DBUS_TYPE_SIGNATURE:
        appendText(end, type, m_choices.oneIn(8) ? std::string() : anyType(m_choices, 2));
        return;
    case DBUS_TYPE_UNIX_FD:
        appendDescriptor(end);
        return;
    default:
        break;
    }
    DBusBasicValue value = {};
    value.u64 = m_choices.number();
    if (type == DBUS_TYPE_BOOLEAN)
        value.bool_val = value.u64 & 1;
    ::append(end, type, &value);
}

std::string ValueWriter::longText()
{
    const std::uint32_t length = std::min(m_choices.below(70000), m_longTextLeft);
    m_longTextLeft -= length;
    return std::string(length, 'x');
}

void ValueWriter::appendDescriptor(DBusMessageIter &end)
{
    ++m_descriptors;
    const int descriptor = open("/dev/null", O_RDONLY | O_CLOEXEC);
    ::append(end, DBUS_TYPE_UNIX_FD, &descriptor);
    close(descriptor);
}

void ValueWriter::appendArray(DBusMessageIter &end, const std::string &element, int room)
{
    DBusMessageIter inside;
    dbus_message_iter_open_container(&end, DBUS_TYPE_ARRAY, element.c_str(), &inside);
    std::uint32_t count = m_choices.below(5);
    if (m_choices.oneIn(100) && isBasic(element) && element != "h")
        count = m_choices.below(3000);
    else if (depthOf(element) > 6)
        count = 1;
    for (; count > 0 && m_elementsLeft > 0; --count) {
        --m_elementsLeft;
        appendValue(inside, element, room - 1);
    }
    dbus_message_iter_close_container(&end, &inside);
}

void ValueWriter::appendMembers(DBusMessageIter &end, int type, const std::string &members,
                                int room)
{
    DBusMessageIter inside;
    dbus_message_iter_open_container(&end, type, nullptr, &inside);
    for (const std::string &member : typesOf(members))
        appendValue(inside, member, room - 1);
    dbus_message_iter_close_container(&end, &inside);
}

void ValueWriter::appendVariant(DBusMessageIter &end, int room)
{
    std::string type = anyType(m_choices, 2);
    if (m_choices.oneIn(40))
        type = deepType(m_choices);
    else if (m_choices.oneIn(3))
        type = "v";
    if (type.size() > longestSignature ||
        depthOf(type) + (type.find('v') == std::string::npos ? 1 : 2) > room)
        type = "s";
    DBusMessageIter inside;
    dbus_message_iter_open_container(&end, DBUS_TYPE_VARIANT, type.c_str(), &inside);
    appendValue(inside, type, room - 1);
    dbus_message_iter_close_container(&end, &inside);
}
