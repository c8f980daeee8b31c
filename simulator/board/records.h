#ifndef RECORDS_H
#define RECORDS_H

#include <string>

namespace board
{
/** CRC-16/ARC of @p bytes. */
unsigned short crc16(const std::string &bytes);

/** The identification record of a new instrument: model 8345, which has a screen. */
std::string instrumentRecord();

/** The record of a new measure card: 296 coefficients. */
std::string measureRecord();
} // namespace board

#endif
