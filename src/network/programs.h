#ifndef PROGRAMS_H
#define PROGRAMS_H

#include <QString>

/**
 * Whether a program of this name runs, as "pidof" says.
 *
 * Blocks for at most 1000 ms; false when pidof has not ended by then, fails or is missing.
 */
bool isProgramRunning(const QString &name);

#endif
