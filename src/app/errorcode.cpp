#include "errorcode.h"

namespace
{
const QString prefix = QStringLiteral("com.orvendis.Strandel.BoardManager.Error.");
}

const QString Error::m_none = prefix + QStringLiteral("None");
const QString Error::m_undefined = prefix + QStringLiteral("Undefined");
const QString Error::m_invalidArgument = prefix + QStringLiteral("InvalidArguments");
// Clients match on this spelling.
const QString Error::m_serviceUnreachable = prefix + QStringLiteral("ServiceUnrechable");
const QString Error::m_process = prefix + QStringLiteral("Process");
const QString Error::m_read = prefix + QStringLiteral("Read");
const QString Error::m_write = prefix + QStringLiteral("Write");
const QString Error::m_configuration = prefix + QStringLiteral("Configuration");
const QString Error::m_initialisation = prefix + QStringLiteral("Initialisation");

namespace
{
// Indexed by Error::Code.
const QString *const names[] = {
    &Error::m_none,
    &Error::m_undefined,
    &Error::m_invalidArgument,
    &Error::m_serviceUnreachable,
    &Error::m_process,
    &Error::m_read,
    &Error::m_write,
    &Error::m_configuration,
    &Error::m_initialisation,
};
constexpr int codes = sizeof names / sizeof names[0];
} // namespace

QString Error::nameOf(int code)
{
    return code >= 0 && code < codes ? *names[code] : m_undefined;
}

int Error::codeOf(const QString &name)
{
    for (int code = 0; code < codes; ++code) {
        if (*names[code] == name)
            return code;
    }
    return Undefined;
}
