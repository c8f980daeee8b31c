#ifndef CALLS_H
#define CALLS_H

#include "choices.h"
#include "connection.h"
#include "introspection.h"

/** A call of the daemon, and its expected result. */
struct Call {
    Message message;
    /** The signature of a successful reply; "*" for any. */
    std::string reply;
};

/**
 * Returns the call with the number @p number in the sequence of @p seed; deterministic for the same
 * arguments.
 */
Call makeCall(std::uint64_t seed, std::uint64_t number, const Interfaces &interfaces);

/**
 * Returns an invalid message: a signal or reply that pretends to come from another peer, or out of
 * turn.
 */
Message makeForgery(Choices &choices, const Interfaces &interfaces);

/** Returns the choices for the number @p number of one of the sequences of @p seed. */
Choices choicesOf(std::uint64_t seed, std::uint64_t sequence, std::uint64_t number);

#endif
