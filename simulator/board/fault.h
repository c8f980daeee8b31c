#ifndef FAULT_H
#define FAULT_H

#include <string>

namespace board
{
/** How one call of a library operation fails or misbehaves. */
struct Fault {
    /** The effect of the fault. */
    enum Kind {
        None,    ///< the call works
        Failure, ///< the call fails
        Garbage, ///< the call does nothing, returns garbage and reports success
    };

    Kind kind = None;
    /** How long the call waits before it works or fails, in milliseconds. */
    long long delay = 0;
    /** True if the call blocks until the fault's file is removed. */
    bool isHeld = false;
};

/** The content of a fault's file: the board's file "faults/OPERATION". */
struct FaultWords {
    Fault fault;
    /** The number of faulty calls still to come; negative for all calls. */
    long long calls = -1;
    /** The number of calls that work before the first faulty call. */
    long long after = 0;
};

/**
 * Parses a fault's file: "always" or a number of calls, "delay" and milliseconds, "after" and a
 * number of calls, "garbage", "hold", in any order.
 *
 * @return the fault; a failure of every call if the words are invalid or missing
 */
FaultWords parseFault(const std::string &words);

/** Returns the words for @p asked. */
std::string faultText(const FaultWords &asked);

/**
 * Returns the fault of the next call of @p operation, for example "KyAls.init", and counts this
 * call in the fault's file.
 */
Fault takeFault(const std::string &operation);

/**
 * Blocks until the fault's file of @p operation is removed. Meanwhile the board's file "held" names
 * the operation.
 */
void waitForRelease(const std::string &operation);
} // namespace board

#endif
