#ifndef FIGURES_H
#define FIGURES_H

#include <QString>

/**
 * Has ./test print @p line, "name: figures", before its summary. Where nobody collects figures, it
 * is printed at once.
 */
void reportFigures(const QString &line);

#endif
