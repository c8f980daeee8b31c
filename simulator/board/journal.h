#ifndef JOURNAL_H
#define JOURNAL_H

#include <string>

namespace board
{
/**
 * Appends a line for one library call with its time, for example "KyLeds.setLedState(18, 3) = 0",
 * to the board's journal. Does nothing unless the file "journal" exists.
 */
void writeJournal(const std::string &line);
} // namespace board

#endif
