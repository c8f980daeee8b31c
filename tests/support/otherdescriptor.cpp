#include "kyals.h"

/**
 * Preloaded before the board's libraries: a light sensor whose interrupt descriptor is negative,
 * but not the library's value for a failure.
 */
int KyAls::getinterruptHandler()
{
    return -1;
}
