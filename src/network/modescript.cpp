#include "modescript.h"

#include <QStringList>

namespace
{
const QString program = QStringLiteral("/usr/share/redpine/switch_coex_mode.sh");
constexpr int startTimeMs = 1000;
} // namespace

ModeScript::ModeScript()
{
    // hostapd outlives the script and still needs a valid stdout.
    m_process.setStandardOutputFile(QProcess::nullDevice());
    m_process.setStandardErrorFile(QProcess::nullDevice());
    connect(&m_process,
            static_cast<void (QProcess::*)(int, QProcess::ExitStatus)>(&QProcess::finished), this,
            &ModeScript::ended);
}

bool ModeScript::start(const QString &mode)
{
    if (m_process.state() != QProcess::NotRunning)
        return false;
    m_process.start(program, QStringList(mode), QIODevice::ReadWrite);
    return m_process.waitForStarted(startTimeMs);
}
