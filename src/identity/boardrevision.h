#ifndef BOARDREVISION_H
#define BOARDREVISION_H

#include <QString>

/** The board library's number (0 to 3) of the instrument model @p model of a record. */
unsigned int libraryModel(quint16 model);

/** The FPGA's revision as people read it: high and low 16 bits in decimal, as in "2.3". */
QString fpgaRevisionText(unsigned int revision);

#endif
