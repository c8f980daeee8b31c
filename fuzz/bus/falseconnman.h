#ifndef FALSECONNMAN_H
#define FALSECONNMAN_H

#include "choices.h"
#include "connection.h"
#include "introspection.h"

#include <chrono>
#include <deque>
#include <memory>

/**
 * Owns ConnMan's name and misbehaves: it replies with errors, with values of any type, late, twice
 * or never. It replies correctly often enough for the daemon to make progress.
 */
class FalseConnman
{
public:
    /**
     * @param isOftenSilent true to omit one reply in 1,000 instead of one in 100,000: for a daemon
     *        whose timeouts expire quickly
     */
    FalseConnman(std::uint64_t seed, bool isOftenSilent);

    /** Answers the daemon's pending calls, and sends the late replies that are due. */
    void work();

    /** Sends a correct or random signal, or leaves the bus and joins it again. */
    void act(Choices &choices, const Interfaces &interfaces);

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
    std::uint64_t m_count = 0;
    std::deque<Late> m_late;
    std::unique_ptr<Connection> m_connection;
};

#endif
