#include "lightsensor.h"

#include "boarddirectory.h"
#include "thresholdcode.h"
#include "value.h"

#include <algorithm>
#include <csignal>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <system_error>

namespace board
{
namespace
{
constexpr float brightestLux = 1e6F;
/** The interval in milliseconds at which we poll if the kernel does not report changes. */
constexpr int lookIntervalMs = 100;

struct Registers {
    float lux;
    long long high;
    long long low;
    bool isEnabled;
    bool isRaised;
};

std::optional<float> readLux()
{
    return readReal("als/lux", 0, brightestLux);
}

std::optional<Registers> readRegisters()
{
    const auto lux = readLux();
    const auto high = readNumber("als/threshold_high", 0, 255);
    const auto low = readNumber("als/threshold_low", 0, 255);
    const auto isEnabled = readFlag("als/interrupt_enabled");
    const auto isRaised = readFlag("als/interrupt");
    if (!lux || !high || !low || !isEnabled || !isRaised)
        return {};
    return Registers{*lux, *high, *low, *isEnabled, *isRaised};
}

bool isOutside(float lux, const Registers &registers)
{
    const unsigned char code = thresholdCode(lux);
    return code > registers.high || code < registers.low;
}

std::chrono::milliseconds persistence()
{
    const long long tenths = readNumber("als/timer", 0, 255).value_or(0);
    return std::chrono::milliseconds(100 * std::max(tenths, 1LL));
}

/** Reads the kernel's change events; returns false if it will report no more. */
bool takeChanges(int changes)
{
    alignas(inotify_event) char buffer[4096];
    bool goesOn = true;
    for (ssize_t length; (length = ::read(changes, buffer, sizeof buffer)) > 0;) {
        for (const char *place = buffer; place < buffer + length;) {
            const auto *event = reinterpret_cast<const inotify_event *>(place);
            if (event->mask & (IN_MOVE_SELF | IN_DELETE_SELF | IN_IGNORED))
                goesOn = false;
            place += sizeof *event + event->len;
        }
    }
    return goesOn;
}
} // namespace

LightSensor::LightSensor() : m_process(getpid()) {}

LightSensor::~LightSensor()
{
    if (!m_watcher.joinable())
        return;
    // A forked child has the object but not the thread.
    if (getpid() != m_process) {
        m_watcher.detach();
        return;
    }
    eventfd_write(m_stop.get(), 1);
    m_watcher.join();
}

bool LightSensor::init()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    const Lock lock;
    m_isEnabled = false;
    m_isRaised = false;
    return start() && writeNumber("als/interrupt_enabled", 0) && writeNumber("als/interrupt", 0);
}

std::optional<float> LightSensor::read()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    const std::optional<float> lux = readLux();
    // If interrupts are enabled and none is raised, a new value must still raise an interrupt: do
    // not store it as known.
    if (lux && (m_isRaised || !m_isEnabled))
        m_settled = lux;
    return lux;
}

bool LightSensor::setThresholds(unsigned char high, unsigned char low)
{
    const Lock lock;
    return writeNumber("als/threshold_high", high) && writeNumber("als/threshold_low", low);
}

bool LightSensor::setTimer(unsigned char tenths)
{
    return writeNumber("als/timer", tenths);
}

bool LightSensor::enableInterrupt(bool enable)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    const Lock lock;
    if (enable && !start())
        return false;
    if (!enable) {
        m_line.clear();
        m_isRaised = false;
        if (!writeNumber("als/interrupt", 0))
            return false;
    }
    m_isEnabled = enable;
    return writeNumber("als/interrupt_enabled", enable);
}

std::optional<int> LightSensor::descriptor()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    if (!m_line.open())
        return {};
    return m_line.descriptor();
}

std::optional<bool> LightSensor::acknowledge()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    const Lock lock;
    const std::optional<bool> wasRaised = readFlag("als/interrupt");
    // The watcher thread sees this write, too, and checks whether the light has changed meanwhile.
    if (!wasRaised || !writeNumber("als/interrupt", 0))
        return {};
    m_isRaised = false;
    return wasRaised;
}

bool LightSensor::start()
{
    if (m_watcher.joinable())
        return true;
    m_stop.reset(eventfd(0, EFD_CLOEXEC));
    if (!m_line.open() || !m_stop.isOpen())
        return false;
    // Block all signals: other threads handle them. The new thread inherits the mask.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    try {
        m_watcher = std::thread(&LightSensor::watch, this);
    } catch (const std::system_error &) {
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return m_watcher.joinable();
}

void LightSensor::watch()
{
    Descriptor changes;
    bool isTold = false;
    while (true) {
        if (!isTold)
            isTold = openWatch(changes) >= 0;
        int timeout = -1;
        {
            const std::lock_guard<std::mutex> guard(m_mutex);
            evaluate();
            timeout = millisecondsToRepetition();
        }
        if (!isTold)
            timeout = timeout < 0 ? lookIntervalMs : std::min(timeout, lookIntervalMs);
        pollfd waited[] = {{m_stop.get(), POLLIN, 0}, {isTold ? changes.get() : -1, POLLIN, 0}};
        poll(waited, 2, timeout);
        if (waited[0].revents)
            return;
        if (waited[1].revents)
            isTold = takeChanges(changes.get());
    }
}

/** Watches the sensor's directory for changes. */
int LightSensor::openWatch(Descriptor &changes) const
{
    changes.reset(inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
    return inotify_add_watch(changes.get(), pathOf("als").c_str(),
                             IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVE_SELF | IN_DELETE_SELF);
}

/** Evaluates the registers as the sensor does after each measurement. */
void LightSensor::evaluate()
{
    const Lock lock;
    const std::optional<Registers> registers = readRegisters();
    if (!registers)
        return;
    m_isEnabled = registers->isEnabled;
    if (!registers->isEnabled || !registers->isRaised)
        m_isRaised = false;
    if (!registers->isEnabled || registers->isRaised) {
        m_repetition.reset();
        // Another process has raised the interrupt in the file als/interrupt: raise it on this
        // process's line, too.
        if (registers->isEnabled && !m_isRaised)
            raise(registers->lux);
        return;
    }
    measure(registers->lux, isOutside(registers->lux, *registers),
            m_settled && isOutside(*m_settled, *registers));
}

void LightSensor::measure(float lux, bool isOutside, bool wasOutside)
{
    const bool hasChanged = !m_settled || *m_settled != lux;
    if (hasChanged && (isOutside || wasOutside)) {
        raise(lux);
        return;
    }
    m_settled = lux;
    if (!isOutside)
        m_repetition.reset();
    else if (!m_repetition)
        m_repetition = Clock::now() + persistence();
    else if (Clock::now() >= *m_repetition)
        raise(lux);
}

void LightSensor::raise(float lux)
{
    m_settled = lux;
    m_repetition.reset();
    m_isRaised = true;
    writeNumber("als/interrupt", 1);
    m_line.raise();
}

int LightSensor::millisecondsToRepetition() const
{
    using std::chrono::milliseconds;
    if (!m_repetition)
        return -1;
    // Round up: otherwise the thread would wake up too early.
    const auto left =
        std::chrono::duration_cast<milliseconds>(*m_repetition - Clock::now()) + milliseconds(1);
    return static_cast<int>(std::max(left, milliseconds(0)).count());
}
} // namespace board
