#ifndef LINK_H
#define LINK_H

#include <QString>

/** Switches a network interface on or off; false where there is none of this name. */
bool setLinkUp(const QString &interfaceName, bool up);

#endif
