#ifndef BOARDREVISION_H
#define BOARDREVISION_H

#include <QString>

/** Returns the board library's number (0 to 3) of the instrument model @p model in a record. */
unsigned int libraryModel(quint16 model);

/** Returns the FPGA's revision as text: high and low 16 bits in decimal, for example "2.3". */
QString fpgaRevisionText(unsigned int revision);

#endif
