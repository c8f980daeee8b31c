#include "fault.h"

#include "boardfolder.h"
#include "descriptor.h"
#include "value.h"

#include <cstdlib>
#include <fcntl.h>
#include <locale>
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

/** The same words for one call less; empty when none are left. */
std::string countDown(const std::string &words)
{
    std::istringstream stream(words);
    std::string word;
    std::string fewer;
    bool isDelay = false;
    while (stream >> word) {
        const long long number = isDelay ? -1 : numberIn(word, mostCalls);
        if (number == 0 || number == 1)
            return {};
        fewer += (number > 0 ? std::to_string(number - 1) : word) + ' ';
        isDelay = word == "delay";
    }
    return fewer;
}
} // namespace

FaultWords parseFault(const std::string &words)
{
    const FaultWords notUnderstood = {{Fault::Failure, 0}, -1};
    std::istringstream stream(words);
    FaultWords result;
    bool isEmpty = true;
    bool isGarbage = false;
    bool isFailure = false;
    std::string word;
    while (stream >> word) {
        isEmpty = false;
        if (word == "always") {
            isFailure = true;
        } else if (word == "garbage") {
            isGarbage = true;
        } else if (word == "delay") {
            result.fault.delay = stream >> word ? numberIn(word, longestDelay) : -1;
            if (result.fault.delay < 0)
                return notUnderstood;
        } else {
            isFailure = true;
            result.calls = numberIn(word, mostCalls);
            if (result.calls < 0)
                return notUnderstood;
        }
    }
    if (isEmpty)
        return notUnderstood;
    if (isGarbage || isFailure)
        result.fault.kind = isGarbage ? Fault::Garbage : Fault::Failure;
    return result;
}

Fault takeFault(const std::string &operation)
{
    const std::string file = "faults/" + operation;
    const std::string path = pathOf(file);
    if (access(path.c_str(), F_OK) != 0)
        return {};
    const Lock lock;
    const std::string words = readText(file).value_or(std::string());
    // Another call may just have taken the last one.
    if (words.empty() && access(path.c_str(), F_OK) != 0)
        return {};
    const FaultWords asked = parseFault(words);
    if (asked.calls < 0)
        return asked.fault;
    const std::string fewer = countDown(words);
    if (fewer.empty())
        unlink(path.c_str());
    else
        writeText(file, fewer.substr(0, fewer.size() - 1));
    return asked.calls == 0 ? Fault() : asked.fault;
}
} // namespace board
