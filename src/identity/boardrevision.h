#ifndef BOARDREVISION_H
#define BOARDREVISION_H

#include <QString>

/**
 * Converts @p model, the instrument model in a record, to the board library's number: 0 to 2, or 3
 * for any other model.
 */
unsigned int libraryModel(quint16 model);

/** Returns the FPGA's revision as text: high and low 16 bits in decimal, for example "2.3". */
QString fpgaRevisionText(unsigned int revision);

#endif
