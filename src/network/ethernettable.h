#ifndef ETHERNETTABLE_H
#define ETHERNETTABLE_H

#include "linkmachine.h"

/** The wired interface. */
extern const LinkTable ethernetTable;

#endif
