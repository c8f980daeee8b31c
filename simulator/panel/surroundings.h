#ifndef SURROUNDINGS_H
#define SURROUNDINGS_H

#include "instrument.h"

/**
 * Reads the files of the board into @p instrument without changing them. Reads nothing if there is
 * no board.
 */
void readBoard(Instrument &instrument);

/** Reads the speed, the cable, the DHCP servers and the access points into @p instrument. */
void readSurroundings(Instrument &instrument);

#endif
