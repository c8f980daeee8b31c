#ifndef CALLS_H
#define CALLS_H

#include "choices.h"
#include "connection.h"
#include "introspection.h"

/** A method call to the daemon, and its expected reply. */
struct Call {
    Message message;
    /** The signature of a successful reply; "*" for any. */
    std::string reply;
};

/**
 * Returns the call with the number @p number in the sequence of @p seed. The same arguments always
 * give the same call.
 */
Call makeCall(std::uint64_t seed, std::uint64_t number, const Interfaces &interfaces);

/**
 * Returns a forged message: a signal that pretends to come from ConnMan or the bus, or a reply that
 * belongs to no call.
 */
Message makeForgery(Choices &choices, const Interfaces &interfaces);

/** Returns the choices for the event @p number in one of the independent sequences of @p seed. */
Choices choicesOf(std::uint64_t seed, std::uint64_t sequence, std::uint64_t number);

#endif
