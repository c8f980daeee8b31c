#ifndef FAULT_H
#define FAULT_H

#include <string>

namespace board
{
/** What somebody wants to go wrong with one call. */
struct Fault {
    /** What the call does in the end. */
    enum Kind {
        None,    ///< its work
        Failure, ///< nothing, and it says so
        Garbage, ///< nothing but giving nonsense, and it calls that a success
    };

    Kind kind = None;
    /** How long the call takes, in milliseconds. */
    long long delay = 0;
    /** Whether it takes until the file that asks for the fault is gone. */
    bool isHeld = false;
};

/** What a file of faults asks for. */
struct FaultWords {
    Fault fault;
    /** How many calls it is still for; negative for all of them. */
    long long calls = -1;
    /** How many calls go well before the first of them. */
    long long after = 0;
};

/**
 * Reads the words of a file of faults: "always" or a number of calls, "delay" and milliseconds,
 * "after" and a number of calls, "garbage", "hold", in any order.
 *
 * @return what they ask for; words that make no sense, or none, ask for a failure of every call
 */
FaultWords parseFault(const std::string &words);

/** The words that ask for @p asked. */
std::string faultText(const FaultWords &asked);

/** Takes the fault that the next call of @p operation, as in "KyAls.init", is to have. */
Fault takeFault(const std::string &operation);

/**
 * Returns when the file that asks for the fault of @p operation is gone. In the meantime the file
 * "held" of the board names the operation.
 */
void waitForRelease(const std::string &operation);
} // namespace board

#endif
