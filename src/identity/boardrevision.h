#ifndef BOARDREVISION_H
#define BOARDREVISION_H

#include "iboardrev.h"

#include <QString>

/** The board library's number of the instrument model @p model, as its record holds it. */
e_model libraryModel(quint16 model);

/** The FPGA's revision as people read it: high and low 16 bits in decimal, as in "2.3". */
QString fpgaRevisionText(unsigned int revision);

#endif
