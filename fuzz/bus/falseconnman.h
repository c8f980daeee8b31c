#ifndef FALSECONNMAN_H
#define FALSECONNMAN_H

#include "choices.h"
#include "connection.h"
#include "introspection.h"

#include <chrono>
#include <deque>
#include <memory>

/**
 * Owns ConnMan's name and misbehaves in every way: it replies with errors, with values of any type,
 * late, twice or never, and often enough correctly that the daemon makes progress.
 */
class FalseConnman
{
public:
    /**
     * @param isOftenSilent true if the timeout of a missing reply passes quickly
     */
    FalseConnman(std::uint64_t seed, bool isOftenSilent);

    /** Answers the daemon's pending calls, and sends what is due. */
    void work();

    /** Sends a correct or random signal; or leaves the bus and returns. */
    void act(Choices &choices, const Interfaces &interfaces);

    /** Makes all further replies immediate and never missing. */
    void behave();

    const Connection &connection() const { return *m_connection; }
    /** The number of the daemon's calls so far. */
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
