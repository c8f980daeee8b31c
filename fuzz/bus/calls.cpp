#include "calls.h"

#include "wirevalue.h"

#include <algorithm>

namespace
{
/**
 * A heavy method makes the daemon copy a profile or wait for a script. If a heavy method is chosen,
 * it is called only once in this number of times; otherwise another method is chosen.
 */
const std::uint32_t rarity = 20;

bool isHeavy(const Method &method)
{
    static const char *const names[] = {"setUser", "factoryReset", "scan", "connect"};
    return std::find(std::begin(names), std::end(names), method.name) != std::end(names);
}

template <typename Element>
const Element &oneOf(const std::vector<Element> &elements, Choices &choices)
{
    return elements[choices.below(static_cast<std::uint32_t>(elements.size()))];
}

Message newCall(const std::string &path, const std::string &interface, const std::string &name)
{
    return Message(dbus_message_new_method_call(
        daemonName, path.c_str(), interface.empty() ? nullptr : interface.c_str(), name.c_str()));
}

/**
 * Appends values of the types @p signature and, if @p isAnything is true, values of any types.
 * Appends nothing if the message would have more file descriptors than the bus allows.
 */
void fill(Message &message, const std::string &signature, bool isAnything, Choices &choices)
{
    Message bare(dbus_message_copy(message.get()));
    ValueWriter writer(message.get(), choices);
    if (!signature.empty())
        writer.append(signature);
    if (isAnything)
        writer.appendAnything();
    if (!writer.isSendable())
        message = std::move(bare);
}

/** Returns @p signature with a type added, the last type removed, or all types replaced. */
std::string changed(const std::string &signature, Choices &choices)
{
    std::vector<std::string> types = typesOf(signature);
    switch (choices.below(3)) {
    case 0:
        types.push_back(anyType(choices, 3));
        break;
    case 1:
        if (!types.empty())
            types.pop_back();
        break;
    default:
        for (std::string &type : types)
            type = anyType(choices, 3);
    }
    std::string made;
    for (const std::string &type : types)
        made += type;
    return made;
}

Method anyMethod(const Interfaces &interfaces, Choices &choices)
{
    const Method *method = &oneOf(interfaces.methods, choices);
    while (isHeavy(*method) && !choices.oneIn(rarity))
        method = &oneOf(interfaces.methods, choices);
    return *method;
}

Call callMethod(const Interfaces &interfaces, Choices &choices)
{
    const Method method = anyMethod(interfaces, choices);
    const bool isNamed = !choices.oneIn(20);
    Message message = newCall(method.path, isNamed ? method.interface : "", method.name);
    const std::uint32_t kind = choices.below(10);
    if (kind < 6) {
        fill(message, method.parameters, false, choices);
        return {std::move(message), isNamed ? method.reply : "*"};
    }
    if (kind < 8)
        fill(message, changed(method.parameters, choices), false, choices);
    else if (kind < 9)
        fill(message, "", true, choices);
    return {std::move(message), "*"};
}

Call callProperties(const Interfaces &interfaces, Choices &choices)
{
    const Property property = oneOf(interfaces.properties, choices);
    const std::string interface =
        choices.oneIn(3) ? oneOf(interfaces.names, choices) : property.interface;
    const std::string name = choices.oneIn(3) ? choices.text() : property.name;
    static const std::string methods[] = {"Get", "Set", "GetAll"};
    const std::string method = choices.among(methods);
    Message message = newCall(choices.oneIn(3) ? oneOf(interfaces.paths, choices) : property.path,
                              "org.freedesktop.DBus.Properties", method);
    if (choices.oneIn(4)) {
        fill(message, "", true, choices);
        return {std::move(message), "*"};
    }
    const char *first = interface.c_str();
    const char *second = name.c_str();
    dbus_message_append_args(message.get(), DBUS_TYPE_STRING, &first, DBUS_TYPE_INVALID);
    if (method != "GetAll")
        dbus_message_append_args(message.get(), DBUS_TYPE_STRING, &second, DBUS_TYPE_INVALID);
    if (method == "Set")
        fill(message, "v", false, choices);
    return {std::move(message), method == "Get" ? "v" : method == "Set" ? "" : "a{sv}"};
}

/** Returns a call of an unknown name, or of a known name on the wrong object or interface. */
Call callSomethingElse(const Interfaces &interfaces, Choices &choices)
{
    static const std::string names[] = {"Introspect",
                                        "Ping",
                                        "GetMachineId",
                                        "GetManagedObjects",
                                        "RequestInput",
                                        "ReportError",
                                        "ReportPeerError",
                                        "Release",
                                        "Cancel",
                                        "RequestBrowser",
                                        "propertyChanged",
                                        "batteryStatus",
                                        "deleteLater",
                                        "destroyed",
                                        "quit",
                                        "servicesChangedSlot",
                                        "handleAlsActivation",
                                        "timeoutMonitoring",
                                        "setObjectName",
                                        "x"};
    static const std::string interfaceNames[] = {"org.freedesktop.DBus.Introspectable",
                                                 "org.freedesktop.DBus.Peer",
                                                 "org.freedesktop.DBus.Properties",
                                                 "org.freedesktop.DBus.ObjectManager",
                                                 "net.connman.Agent",
                                                 "local.QObject",
                                                 ""};
    const std::string path = choices.oneIn(2) ? oneOf(interfaces.paths, choices) : anyPath(choices);
    const std::string interface =
        choices.oneIn(2) ? oneOf(interfaces.names, choices) : choices.among(interfaceNames);
    const std::string name =
        choices.oneIn(2) ? anyMethod(interfaces, choices).name : choices.among(names);
    Message message = newCall(path, interface, name);
    fill(message,
         choices.oneIn(3)   ? "oa{sv}"
         : choices.oneIn(2) ? "os"
                            : "",
         choices.oneIn(3), choices);
    return {std::move(message), "*"};
}
} // namespace

Choices choicesOf(std::uint64_t seed, std::uint64_t sequence, std::uint64_t number)
{
    return Choices(seed * 0x9e3779b97f4a7c15 + (sequence << 56) + number * 0xd1b54a32d192ed03);
}

Call makeCall(std::uint64_t seed, std::uint64_t number, const Interfaces &interfaces)
{
    Choices choices = choicesOf(seed, 1, number);
    const std::uint32_t kind = choices.below(20);
    Call call = kind < 14   ? callMethod(interfaces, choices)
                : kind < 17 ? callProperties(interfaces, choices)
                            : callSomethingElse(interfaces, choices);
    if (choices.oneIn(30))
        dbus_message_set_no_reply(call.message.get(), true);
    return call;
}

Message makeForgery(Choices &choices, const Interfaces &interfaces)
{
    static const char *const names[] = {"PropertyChanged",
                                        "ServicesChanged",
                                        "NameOwnerChanged",
                                        "NameLost",
                                        "NameAcquired",
                                        "PropertiesChanged",
                                        "x"};
    static const char *const interfaceNames[] = {"net.connman.Technology", "net.connman.Service",
                                                 "net.connman.Manager", "org.freedesktop.DBus",
                                                 "org.freedesktop.DBus.Properties"};
    static const std::string signatures[] = {"sv", "sss", "a(oa{sv})ao", "s", "sa{sv}as", ""};
    Message message;
    const std::uint32_t kind = choices.below(8);
    if (kind < 6) {
        message.reset(dbus_message_new_signal(anyPath(choices).c_str(),
                                              choices.among(interfaceNames), choices.among(names)));
    } else {
        message.reset(dbus_message_new(kind == 6 ? DBUS_MESSAGE_TYPE_METHOD_RETURN
                                                 : DBUS_MESSAGE_TYPE_ERROR));
        dbus_message_set_reply_serial(message.get(), 1 + choices.below(100000));
        if (kind == 7)
            dbus_message_set_error_name(message.get(), "org.freedesktop.DBus.Error.NoReply");
    }
    if (kind >= 6 || choices.oneIn(2))
        dbus_message_set_destination(message.get(), daemonName);
    else if (choices.oneIn(20))
        dbus_message_set_path(message.get(), oneOf(interfaces.paths, choices).c_str());
    fill(message, choices.among(signatures), choices.oneIn(4), choices);
    return message;
}
