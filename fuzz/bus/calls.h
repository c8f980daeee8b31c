#ifndef CALLS_H
#define CALLS_H

#include "choices.h"
#include "connection.h"
#include "introspection.h"

/** A call of the daemon, and what must come of it. */
struct Call {
    Message message;
    /** The signature of a reply that is no error; "*" where any will do. */
    std::string reply;
};

/**
 * The call of the number @p number in the sequence that @p seed begins; the same for the same
 * numbers and interfaces.
 */
Call makeCall(std::uint64_t seed, std::uint64_t number, const Interfaces &interfaces);

/** Sends what no client should: signals and answers in other peers' names, and out of turn. */
Message makeForgery(Choices &choices, const Interfaces &interfaces);

/** The choices of the number @p number of one of the sequences that @p seed begins. */
Choices choicesOf(std::uint64_t seed, std::uint64_t sequence, std::uint64_t number);

#endif
