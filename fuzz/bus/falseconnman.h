#ifndef FALSECONNMAN_H
#define FALSECONNMAN_H

#include "choices.h"
#include "connection.h"
#include "introspection.h"

#include <chrono>
#include <deque>
#include <memory>

/**
 * Owns ConnMan's name and answers the daemon as badly as a peer can: with errors, with values of
 * any type, late, twice or never, and often enough as ConnMan does, so that the daemon gets on.
 */
class FalseConnman
{
public:
    /** @param isOftenSilent whether a wait for an answer that never comes is short */
    FalseConnman(std::uint64_t seed, bool isOftenSilent);

    /** Answers what the daemon has asked by now, and sends what is due. */
    void work();

    /** Sends a signal, as ConnMan's or unlike any of it; or leaves the bus, and comes back. */
    void act(Choices &choices, const Interfaces &interfaces);

    /** From now on: answers at once, and always. */
    void behave();

    const Connection &connection() const { return *m_connection; }
    /** How many calls of the daemon it has taken. */
    std::uint64_t count() const { return m_count; }

private:
    using Clock = std::chrono::steady_clock;
    struct Late {
        Clock::time_point due;
        Message message;
    };

    void appear();
    void answer(const Message &call);
    Message goodReply(const Message &call, Choices &choices);
    Message anyReply(const Message &call, Choices &choices);
    Message errorReply(const Message &call, Choices &choices);

    const std::uint64_t m_seed;
    const std::uint32_t m_silence;
    bool m_isGood = false;
    std::uint64_t m_count = 0;
    std::deque<Late> m_late;
    std::unique_ptr<Connection> m_connection;
};

#endif
