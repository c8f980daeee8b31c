#include "status.h"

#include "instrumentview.h"
#include "output.h"
#include "present.h"
#include "terminal.h"

ExitStatus showStatus(const Command &command, const Invocation &invocation)
{
    const Answer found = findDaemon();
    if (!found.isGood())
        return fail(command, found);
    InstrumentView view;
    const Answer answer = view.ask();
    if (!answer.isGood())
        return fail(command, answer);
    if (invocation.has("--field"))
        return printField(command, invocation, view.values());
    if (invocation.has("--json"))
        printJson(toJson(view.values()));
    else
        show(view.text());
    return Success;
}
