#ifndef JOURNAL_H
#define JOURNAL_H

#include <string>

namespace board
{
/**
 * Adds a line for one library call, as in "KyLeds.setLedState(18, 3) = 0", to the board's journal,
 * behind the time. Does nothing unless somebody made the file "journal".
 */
void writeJournal(const std::string &line);
} // namespace board

#endif
