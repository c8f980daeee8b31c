#ifndef FIGURES_H
#define FIGURES_H

#include <QString>

/**
 * Makes ./test print @p line, "name: figures", before its summary. Prints it immediately if nothing
 * collects figures.
 */
void reportFigures(const QString &line);

#endif
