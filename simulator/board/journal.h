#ifndef JOURNAL_H
#define JOURNAL_H

#include <string>

namespace board
{
/**
 * Appends @p line, which describes one library call, for example "KyLeds.setLedState(18, 3) = 0",
 * to the board's journal, preceded by the current time. Does nothing unless the file "journal"
 * exists.
 */
void writeJournal(const std::string &line);
} // namespace board

#endif
