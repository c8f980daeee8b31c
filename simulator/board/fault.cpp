#include "fault.h"

#include "boarddirectory.h"
#include "value.h"

#include <cstdlib>
#include <ctime>
#include <sstream>
#include <unistd.h>

namespace board
{
namespace
{
constexpr long long longestDelayMs = 600000;
const long long mostCalls = 1000000000;

/** Returns the number in @p word, or -1. */
long long numberIn(const std::string &word, long long highest)
{
    if (word.empty() || word.size() > 10 || word.find_first_not_of("0123456789") != word.npos)
        return -1;
    const long long number = std::strtoll(word.c_str(), nullptr, 10);
    return number <= highest ? number : -1;
}
} // namespace

FaultWords parseFault(const std::string &words)
{
    const FaultWords notUnderstood = {{Fault::Failure, 0}, -1};
    FaultWords asked;
    bool isEmpty = true;
    bool isGarbage = false;
    bool isFailure = false;
    std::istringstream stream(words);
    for (std::string word; stream >> word; isEmpty = false) {
        if (word == "garbage") {
            isGarbage = true;
        } else if (word == "hold") {
            asked.fault.isHeld = true;
        } else if (word == "delay" || word == "after") {
            const bool isDelay = word == "delay";
            long long &number = isDelay ? asked.fault.delay : asked.after;
            number = (stream >> word) ? numberIn(word, isDelay ? longestDelayMs : mostCalls) : -1;
            if (number < 0)
                return notUnderstood;
        } else {
            if (word != "always" && (asked.calls = numberIn(word, mostCalls)) < 0)
                return notUnderstood;
            isFailure = true;
        }
    }
    if (isEmpty)
        return notUnderstood;
    if (isGarbage || isFailure)
        asked.fault.kind = isGarbage ? Fault::Garbage : Fault::Failure;
    return asked;
}

std::string faultText(const FaultWords &asked)
{
    std::string words;
    if (asked.calls >= 0)
        words = " " + std::to_string(asked.calls);
    else if (asked.fault.kind == Fault::Failure)
        words = " always";
    if (asked.fault.kind == Fault::Garbage)
        words += " garbage";
    if (asked.fault.isHeld)
        words += " hold";
    if (asked.after > 0)
        words += " after " + std::to_string(asked.after);
    // An empty file would mean a failure: write at least one word.
    if (asked.fault.delay > 0 || words.empty())
        words += " delay " + std::to_string(asked.fault.delay);
    return words.substr(1);
}

Fault takeFault(const std::string &operation)
{
    const std::string file = "faults/" + operation;
    const std::string path = pathOf(file);
    if (access(path.c_str(), F_OK) != 0)
        return {};
    const Lock lock;
    const std::optional<std::string> words = readText(file);
    // Meanwhile another call may have taken the last fault and removed the file.
    if (!words && access(path.c_str(), F_OK) != 0)
        return {};
    FaultWords asked = parseFault(words.value_or(std::string()));
    if (asked.after > 0) {
        --asked.after;
        writeText(file, faultText(asked));
        return {};
    }
    if (asked.calls < 0)
        return asked.fault;
    const Fault fault = asked.calls > 0 ? asked.fault : Fault();
    --asked.calls;
    if (asked.calls > 0)
        writeText(file, faultText(asked));
    else
        unlink(path.c_str());
    return fault;
}

void waitForRelease(const std::string &operation)
{
    const std::string path = pathOf("faults/" + operation);
    const timespec moment = {0, 2000000};
    writeText("held", operation);
    while (access(path.c_str(), F_OK) == 0)
        nanosleep(&moment, nullptr);
    unlink(pathOf("held").c_str());
}
} // namespace board
