#ifndef JOURNAL_H
#define JOURNAL_H

#include <string>

namespace board
{
/**
 * Appends the monotonic time and @p line to the board's journal. @p line describes one library
 * call, for example "KyLeds.setLedState(18, 3) = 0". Does nothing unless the file "journal" exists.
 */
void writeJournal(const std::string &line);
} // namespace board

#endif
