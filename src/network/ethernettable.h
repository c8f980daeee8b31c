#ifndef ETHERNETTABLE_H
#define ETHERNETTABLE_H

#include "linkmachine.h"

/** The state table of the wired interface. */
extern const LinkTable ethernetTable;

#endif
