#ifndef CALL_H
#define CALL_H

#include "fault.h"
#include "text.h"

#include <optional>
#include <string>

namespace board
{
/**
 * One call of a library operation. Applies the requested fault, and writes the journal line when
 * the call ends.
 */
class Call
{
public:
    /**
     * Begins the call and waits as long as its fault requires.
     *
     * @param operation for example "KyAls.init"; must outlive the call
     */
    template <typename... Arguments>
    explicit Call(const char *operation, const Arguments &...arguments)
        : m_operation(operation), m_fault(begin(operation))
    {
        (addArgument(text(arguments)), ...);
    }
    ~Call();
    Call(const Call &) = delete;
    Call &operator=(const Call &) = delete;

    /**
     * Runs @p work, which returns true on success. @return 0 on success
     */
    template <typename Work>
    int act(Work work)
    {
        return finish(m_fault.kind == Fault::Garbage || (m_fault.kind == Fault::None && work()));
    }

    /**
     * Runs @p work and stores its result in @p out.
     *
     * @param nonsense the result under the fault "garbage"
     * @param work returns a std::optional, empty on failure
     * @return 0 on success
     */
    template <typename Value, typename Work>
    int read(Value *out, const Value &nonsense, Work work)
    {
        std::optional<Value> value;
        if (m_fault.kind == Fault::Garbage)
            value = nonsense;
        else if (m_fault.kind == Fault::None)
            value = work();
        if (!value || !out)
            return finish(false);
        *out = *value;
        m_out = ' ' + text(*value);
        return finish(true);
    }

    /**
     * Runs @p work and returns its result, for an operation without a status.
     *
     * @param failure the result on failure
     * @param nonsense the result under the fault "garbage"
     * @param work returns a std::optional, empty on failure
     */
    template <typename Value, typename Work>
    Value answer(Value failure, Value nonsense, Work work)
    {
        Value value = nonsense;
        if (m_fault.kind == Fault::Failure)
            value = failure;
        else if (m_fault.kind == Fault::None)
            value = std::optional<Value>(work()).value_or(failure);
        m_result = text(value);
        return value;
    }

private:
    static Fault begin(const char *operation);
    void addArgument(const std::string &argument);
    int finish(bool succeeded);

    const char *m_operation;
    const Fault m_fault;
    std::string m_arguments;
    std::string m_result;
    std::string m_out;
};
} // namespace board

#endif
