#ifndef ACCESSPOINTTABLE_H
#define ACCESSPOINTTABLE_H

#include "linkmachine.h"

/** The state table of the Wi-Fi access point. */
extern const LinkTable accessPointTable;

#endif
