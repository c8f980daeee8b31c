#include "fault.h"

#include "boardfolder.h"
#include "value.h"

#include <cstdlib>
#include <sstream>
#include <unistd.h>

namespace board
{
namespace
{
const long long longestDelay = 600000;
const long long mostCalls = 1000000000;

/** The number that @p word is, or -1. */
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
        } else if (word == "delay") {
            asked.fault.delay = stream >> word ? numberIn(word, longestDelay) : -1;
            if (asked.fault.delay < 0)
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
    return std::to_string(asked.calls) + (asked.fault.kind == Fault::Garbage ? " garbage" : "") +
           (asked.fault.delay > 0 ? " delay " + std::to_string(asked.fault.delay) : "");
}

Fault takeFault(const std::string &operation)
{
    const std::string file = "faults/" + operation;
    const std::string path = pathOf(file);
    if (access(path.c_str(), F_OK) != 0)
        return {};
    const Lock lock;
    const std::optional<std::string> words = readText(file);
    // Another call may just have had the last of them.
    if (!words && access(path.c_str(), F_OK) != 0)
        return {};
    FaultWords asked = parseFault(words.value_or(std::string()));
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
} // namespace board
