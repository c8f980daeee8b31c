#include "call.h"

#include "journal.h"

#include <cerrno>
#include <ctime>

namespace board
{
Call::~Call()
{
    writeJournal(m_operation + ('(' + m_arguments) + ") = " + m_result + m_out);
}

Fault Call::begin(const char *operation)
{
    const Fault fault = takeFault(operation);
    timespec left = {static_cast<time_t>(fault.delay / 1000),
                     static_cast<long>(fault.delay % 1000 * 1000000)};
    if (fault.isHeld)
        waitForRelease(operation);
    while (fault.delay > 0 && nanosleep(&left, &left) != 0 && errno == EINTR) {
    }
    return fault;
}

void Call::addArgument(const std::string &argument)
{
    m_arguments += (m_arguments.empty() ? "" : ", ") + argument;
}

int Call::finish(bool succeeded)
{
    m_result = succeeded ? "0" : "1";
    return succeeded ? 0 : 1;
}
} // namespace board
