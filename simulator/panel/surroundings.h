#ifndef SURROUNDINGS_H
#define SURROUNDINGS_H

#include "instrument.h"

/** Reads the files of the board, changing nothing, into @p instrument; without one there are none.
 */
void readBoard(Instrument &instrument);

/** Reads how fast time passes, and how the cable, the DHCP servers and the access points are, into
 * @p instrument. */
void readSurroundings(Instrument &instrument);

#endif
