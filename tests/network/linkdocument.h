#ifndef LINKDOCUMENT_H
#define LINKDOCUMENT_H

#include <QString>

/**
 * @p document with the diagrams and tables of the network interfaces' machines brought up to date:
 * what stands between a line "<!-- machine: NAME -->" and the next "<!-- end of machine -->".
 */
QString withMachines(const QString &document);

#endif
