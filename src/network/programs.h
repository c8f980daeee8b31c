#ifndef PROGRAMS_H
#define PROGRAMS_H

#include <QString>

/**
 * Returns true if "pidof" finds a process with this name.
 *
 * Blocks for at most 1000 ms; false if pidof has not ended by then, fails or is missing.
 */
bool isProgramRunning(const QString &name);

#endif
