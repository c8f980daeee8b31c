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
};

/** What a file of faults asks for. */
struct FaultWords {
    Fault fault;
    /** How many calls it is still for; negative for all of them. */
    long long calls = -1;
};

/**
 * Reads the words of a file of faults: "always" or a number of calls, "delay" and milliseconds,
 * "garbage", in any order.
 *
 * @return what they ask for; words that make no sense, or none, ask for a failure of every call
 */
FaultWords parseFault(const std::string &words);

/** The words that ask for @p asked, which is for a number of calls. */
std::string faultText(const FaultWords &asked);

/** Takes the fault that the next call of @p operation, as in "KyAls.init", is to have. */
Fault takeFault(const std::string &operation);
} // namespace board

#endif
