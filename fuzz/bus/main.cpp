#include "calls.h"
#include "falseconnman.h"

#include <algorithm>
#include <chrono>
#include <cinttypes>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fstream>
#include <map>

/*
 * Sends the daemon valid and invalid calls, while a stand-in for ConnMan misbehaves.
 *
 * usage: hostilebus --process PID --calls N [--seed S] [--from N] [--timelapse] [--growth KB]
 *        [--checked]
 */

namespace
{
using Clock = std::chrono::steady_clock;

/** The maximum number of pending calls. The bus allows a client 128. */
constexpr std::size_t mostAwaited = 24;
/** The timeout of a call: longer than two timeouts of calls from the daemon to ConnMan. */
const std::chrono::seconds longestWait(120);
/**
 * The calls are sent in this number of equal parts. After each part, the daemon's memory and file
 * descriptors are measured.
 */
constexpr unsigned int parts = 8;
/**
 * ConnMan acts unprompted once in this number of calls on average. The client sends a forged
 * message equally often.
 */
const std::uint32_t actionRarity = 8;

struct Options {
    std::uint64_t seed = 1;
    std::uint64_t from = 0;
    std::uint64_t calls = 0;
    int process = 0;
    /** True if the daemon's time passes faster, so that its timeouts for missing replies expire. */
    bool isTimelapse = false;
    /** True if the daemon reports its allocated memory; see leakcheck.cpp. */
    bool isChecked = false;
    /** How much the daemon's memory may grow in the second half of the calls, in KB. */
    long growth = 0;
};

struct Footprint {
    /** In KB: allocated memory with sanitizers, otherwise private pages. */
    long memory = 0;
    long descriptors = 0;
};

long privateMemoryOf(int process)
{
    std::ifstream file("/proc/" + std::to_string(process) + "/smaps_rollup");
    std::string word;
    long sum = 0;
    while (file >> word) {
        long size = 0;
        if (word == "Private_Dirty:" && file >> size)
            sum += size;
    }
    return sum;
}

/** Returns the allocated memory of a daemon that is built with sanitizers. */
long allocatedBy(int process)
{
    static const char path[] = "/run/allocated";
    static_cast<void>(std::remove(path));
    kill(process, SIGUSR1);
    const Clock::time_point deadline = Clock::now() + std::chrono::seconds(20);
    std::string line;
    while (Clock::now() < deadline) {
        std::ifstream file(path);
        // A line feed shows that the number is complete.
        if (std::getline(file, line) && !file.eof())
            return std::stol(line) / 1024;
        waitForAny({}, 1);
    }
    giveUp("the daemon does not report its allocated memory");
}

long descriptorsOf(int process)
{
    DIR *directory = opendir(("/proc/" + std::to_string(process) + "/fd").c_str());
    if (directory == nullptr)
        return 0;
    long count = -2;
    while (readdir(directory) != nullptr)
        ++count;
    closedir(directory);
    return count;
}

bool isAlive(int process)
{
    return kill(process, 0) == 0;
}

/** Sends the calls, receives the replies, and matches each reply with its call. */
class HostileBus
{
public:
    explicit HostileBus(const Options &options)
        : m_options(options),
          m_interfaces(introspect(m_client)),
          m_connman(options.seed, options.isTimelapse)
    {
        std::printf("hostilebus: seed %" PRIu64 ", %zu methods, %zu properties, %zu objects\n",
                    options.seed, m_interfaces.methods.size(), m_interfaces.properties.size(),
                    m_interfaces.paths.size());
    }

    int run()
    {
        const Clock::time_point start = Clock::now();
        std::vector<Footprint> footprints;
        for (unsigned int part = 1; part <= parts; ++part) {
            while (m_next < m_options.from + m_options.calls * part / parts)
                step();
            footprints.push_back(settle());
        }
        const std::chrono::duration<double> taken = Clock::now() - start;
        tell(footprints, taken.count());
        judge(footprints);
        return EXIT_SUCCESS;
    }

private:
    void tell(const std::vector<Footprint> &footprints, double seconds) const
    {
        std::printf("%" PRIu64 " calls from seed %" PRIu64 ": %" PRIu64 " replies, %" PRIu64
                    " errors, %" PRIu64 " answers as ConnMan, %.0f calls/s; descriptors, memory:",
                    m_options.calls, m_options.seed, m_replies, m_errors, m_connman.count(),
                    static_cast<double>(m_options.calls) / seconds);
        for (const Footprint &footprint : footprints)
            std::printf(" %ld, %ld KB;", footprint.descriptors, footprint.memory);
        std::printf("\n");
    }

    /** Fails if the daemon's footprint has grown in the second half of the calls. */
    void judge(const std::vector<Footprint> &footprints) const
    {
        const auto middle = footprints.begin() + parts / 2;
        const Footprint last = footprints.back();
        long memory = 0;
        long descriptors = 0;
        for (auto footprint = footprints.begin(); footprint != middle; ++footprint) {
            memory = std::max(memory, footprint->memory);
            descriptors = std::max(descriptors, footprint->descriptors);
        }
        if (last.descriptors > descriptors)
            giveUp("the daemon has more descriptors open than before");
        if (last.memory > memory + m_options.growth)
            giveUp("the daemon's memory has grown");
    }

    struct Awaited {
        std::uint64_t number;
        std::string reply;
        Clock::time_point since;
    };

    /** Sends the next call unless too many are pending, and handles everything that has arrived. */
    void step()
    {
        if (m_awaited.size() < mostAwaited) {
            sendNext();
        } else {
            waitForAny({&m_client, &m_connman.connection()}, 20);
        }
        work();
    }

    void sendNext()
    {
        Choices choices = choicesOf(m_options.seed, 3, m_next);
        if (choices.oneIn(actionRarity))
            m_connman.act(choices, m_interfaces);
        if (choices.oneIn(actionRarity))
            m_client.send(makeForgery(choices, m_interfaces));
        const Call call = makeCall(m_options.seed, m_next, m_interfaces);
        const std::uint32_t serial = m_client.send(call.message);
        if (!dbus_message_get_no_reply(call.message.get()))
            m_awaited[serial] = {m_next, call.reply, Clock::now()};
        ++m_next;
    }

    void work()
    {
        m_connman.work();
        if (!m_client.flush())
            fail("the bus has ended the connection");
        while (const Message message = m_client.take())
            account(message);
        if (!isAlive(m_options.process))
            fail("the daemon has ended");
        if (!m_awaited.empty() && Clock::now() - m_awaited.begin()->second.since > longestWait)
            fail("the daemon does not answer");
    }

    void account(const Message &message)
    {
        const int type = dbus_message_get_type(message.get());
        if (type != DBUS_MESSAGE_TYPE_METHOD_RETURN && type != DBUS_MESSAGE_TYPE_ERROR)
            return;
        const auto awaited = m_awaited.find(dbus_message_get_reply_serial(message.get()));
        // Only the first reply to a call counts.
        if (awaited == m_awaited.end())
            return;
        if (type == DBUS_MESSAGE_TYPE_ERROR) {
            ++m_errors;
            if (dbus_message_is_error(message.get(), DBUS_ERROR_NO_REPLY) ||
                dbus_message_is_error(message.get(), DBUS_ERROR_SERVICE_UNKNOWN))
                fail("the daemon has left the bus");
        } else {
            ++m_replies;
            const std::string &wanted = awaited->second.reply;
            if (wanted != "*" && wanted != dbus_message_get_signature(message.get()))
                fail("a reply is not of the signature '" + wanted + "', but '" +
                     dbus_message_get_signature(message.get()) + "', to call " +
                     std::to_string(awaited->second.number));
        }
        m_awaited.erase(awaited);
    }

    /** Waits until all calls are answered; returns the daemon's footprint. */
    Footprint settle()
    {
        while (!m_awaited.empty()) {
            waitForAny({&m_client, &m_connman.connection()}, 20);
            work();
        }
        for (int times = 0; times < 3; ++times)
            forget();
        const int process = m_options.process;
        return {m_options.isChecked ? allocatedBy(process) : privateMemoryOf(process),
                descriptorsOf(process)};
    }

    /** Replaces large values that clients have set, and lets the daemon become idle. */
    void forget()
    {
        static const char *const methods[][3] = {
            {"/KyDeviceMgr", "com.orvendis.Strandel.BoardManager.Version",
             "invalidateEepromsContent"},
            {"/KyDeviceMgr", "com.orvendis.Strandel.BoardManager.Temperature", "getTemperatures"},
            {"/KyComMgr", "com.orvendis.Strandel.BoardManager.WIFI", "disconnect"},
            {"/KyComMgr", "com.orvendis.Strandel.BoardManager.Ethernet", "disconnect"},
            {"/KyComMgr", "com.orvendis.Strandel.BoardManager.Ethernet", "getIPv4"},
        };
        for (const auto &method : methods) {
            const Message call(
                dbus_message_new_method_call(daemonName, method[0], method[1], method[2]));
            m_awaited[m_client.send(call)] = {m_next, "*", Clock::now()};
            while (!m_awaited.empty()) {
                waitForAny({&m_client, &m_connman.connection()}, 20);
                work();
            }
        }
    }

    [[noreturn]] void fail(const std::string &why)
    {
        const std::uint64_t first =
            m_awaited.empty() ? m_next : std::min(m_next, m_awaited.begin()->second.number);
        giveUp(why + "; seed " + std::to_string(m_options.seed) +
               ", not answered are some of the "
               "calls from " +
               std::to_string(first) + " to " + std::to_string(m_next) + " (again: --seed " +
               std::to_string(m_options.seed) + " --from " + std::to_string(first) + " --calls " +
               std::to_string(m_next - first + 1) + ")");
    }

    const Options m_options;
    Connection m_client;
    const Interfaces m_interfaces;
    FalseConnman m_connman;
    std::uint64_t m_next = 0;
    std::map<std::uint32_t, Awaited> m_awaited;
    std::uint64_t m_replies = 0;
    std::uint64_t m_errors = 0;
};

Options readOptions(int argc, char *argv[])
{
    Options options;
    for (int index = 1; index < argc; ++index) {
        const std::string name = argv[index];
        if (name == "--timelapse" || name == "--checked") {
            (name == "--checked" ? options.isChecked : options.isTimelapse) = true;
            continue;
        }
        if (++index == argc)
            giveUp(name + " is given no value");
        const std::uint64_t value = std::strtoull(argv[index], nullptr, 10);
        if (name == "--seed")
            options.seed = value;
        else if (name == "--from")
            options.from = value;
        else if (name == "--calls")
            options.calls = value;
        else if (name == "--process")
            options.process = static_cast<int>(value);
        else if (name == "--growth")
            options.growth = static_cast<long>(value);
        else
            giveUp("there is no option " + name);
    }
    if (options.calls == 0 || options.process == 0)
        giveUp("--calls and --process are needed");
    return options;
}
} // namespace

int main(int argc, char *argv[])
{
    if (setvbuf(stdout, nullptr, _IOLBF, 0) != 0)
        giveUp("stdout cannot be made line-buffered");
    return HostileBus(readOptions(argc, argv)).run();
}
