#ifndef CALL_H
#define CALL_H

#include "fault.h"
#include "text.h"

#include <optional>
#include <string>

namespace board
{
/**
 * One call of a library operation: has the fault that is asked for, and leaves its line in the
 * journal when it ends.
 */
class Call
{
public:
    /**
     * Begins the call, and takes as long as its fault says.
     *
     * @param operation as in "KyAls.init"; a text that lives as long as the call
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

    /** Does @p work, which returns whether it succeeded; 0 on success. */
    template <typename Work>
    int act(Work work)
    {
        return finish(m_fault.kind == Fault::Garbage || (m_fault.kind == Fault::None && work()));
    }

    /**
     * Gives what @p work returns to the caller through @p out.
     *
     * @param nonsense what a call whose fault is garbage gives instead
     * @param work returns a std::optional, empty when it failed
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
     * Returns what @p work returns, for an operation that has no status.
     *
     * @param failure what a call that fails returns
     * @param nonsense what a call whose fault is garbage returns
     * @param work returns a std::optional, empty when it failed
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
