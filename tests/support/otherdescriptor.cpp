#include "kyals.h"

/**
 * Put before the board's libraries, a light sensor whose interrupt descriptor is a negative number
 * that is not the library's failure.
 */
int KyAls::getinterruptHandler()
{
    return -1;
}
