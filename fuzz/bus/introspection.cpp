#include "introspection.h"

#include <regex>

namespace
{
std::string documentOf(Connection &connection, const std::string &path)
{
    const Message call(dbus_message_new_method_call(
        daemonName, path.c_str(), "org.freedesktop.DBus.Introspectable", "Introspect"));
    const Message reply = connection.callAndWait(call);
    const char *text = nullptr;
    if (!reply ||
        !dbus_message_get_args(reply.get(), nullptr, DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID))
        giveUp("the daemon does not describe " + path);
    return text;
}

std::string attribute(const std::string &tag, const char *name)
{
    std::smatch found;
    const std::regex pattern(std::string(" ") + name + "=\"([^\"]*)\"");
    return std::regex_search(tag, found, pattern) ? found[1].str() : std::string();
}

std::string childOf(const std::string &path, const std::string &name)
{
    return (path == "/" ? path : path + '/') + name;
}

void readDocument(Connection &connection, const std::string &path, Interfaces &interfaces)
{
    static const std::regex tags("<(interface|method|property|arg|node|signal) [^>]*>");
    const std::string document = documentOf(connection, path);
    std::vector<std::string> below;
    std::string interface;
    bool isInMethod = false;
    interfaces.paths.push_back(path);
    for (std::sregex_iterator tag(document.begin(), document.end(), tags), end; tag != end; ++tag) {
        const std::string text = tag->str();
        const std::string kind = (*tag)[1];
        const std::string name = attribute(text, "name");
        if (kind == "interface") {
            interface = name;
            interfaces.names.push_back(name);
        } else if (kind == "method") {
            interfaces.methods.push_back({path, interface, name, {}, {}});
        } else if (kind == "property") {
            interfaces.properties.push_back({path, interface, name});
        } else if (kind == "node" && !name.empty()) {
            below.push_back(childOf(path, name));
        } else if (kind == "arg" && isInMethod) {
            Method &method = interfaces.methods.back();
            (attribute(text, "direction") == "out" ? method.reply : method.parameters) +=
                attribute(text, "type");
        }
        isInMethod = kind == "method" || (kind == "arg" && isInMethod);
    }
    for (const std::string &child : below)
        readDocument(connection, child, interfaces);
}
} // namespace

Interfaces introspect(Connection &connection)
{
    Interfaces interfaces;
    readDocument(connection, "/", interfaces);
    if (interfaces.methods.empty() || interfaces.properties.empty())
        giveUp("the daemon has no methods or no properties");
    return interfaces;
}
