#ifndef INTROSPECTION_H
#define INTROSPECTION_H

#include "connection.h"

#include <string>
#include <vector>

/** A method of the daemon, as it describes itself. */
struct Method {
    std::string path;
    std::string interface;
    std::string name;
    /** The types of the parameters and those of the reply. */
    std::string parameters;
    std::string reply;
};

struct Property {
    std::string path;
    std::string interface;
    std::string name;
};

/** Everything that the daemon has on the bus. */
struct Interfaces {
    std::vector<Method> methods;
    std::vector<Property> properties;
    std::vector<std::string> paths;
    std::vector<std::string> names;
};

/** Asks the daemon for all of its objects, from the root on. */
Interfaces introspect(Connection &connection);

#endif
