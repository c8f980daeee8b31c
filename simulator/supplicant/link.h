#ifndef LINK_H
#define LINK_H

#include <QString>

/** Switches a network interface on or off; returns false if there is none with this name. */
bool setLinkUp(const QString &interfaceName, bool up);

#endif
