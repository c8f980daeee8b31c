#ifndef LINKDOCUMENT_H
#define LINKDOCUMENT_H

#include <QString>

/**
 * Returns @p document with updated diagrams and tables of the network interfaces' machines:
 * replaces everything between a line "<!-- machine: NAME -->" and the next "<!-- end of machine
 * -->".
 */
QString withMachines(const QString &document);

#endif
