#ifndef INTROSPECTION_H
#define INTROSPECTION_H

#include "connection.h"

#include <string>
#include <vector>

/** A method of the daemon, from its introspection data. */
struct Method {
    std::string path;
    std::string interface;
    std::string name;
    /** The types of the parameters and of the reply. */
    std::string parameters;
    std::string reply;
};

struct Property {
    std::string path;
    std::string interface;
    std::string name;
};

/** All of the daemon's objects and interfaces. */
struct Interfaces {
    std::vector<Method> methods;
    std::vector<Property> properties;
    std::vector<std::string> paths;
    std::vector<std::string> names;
};

/** Introspects all of the daemon's objects, starting at the root. */
Interfaces introspect(Connection &connection);

#endif
