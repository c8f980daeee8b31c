#include "moduledelay.h"

#include "daemon.h"
#include "modescript.h"
#include "remote.h"

ModuleDelay::ModuleDelay(Daemon &daemon, ModeScript &script) : m_daemon(daemon), m_script(script) {}

void ModuleDelay::reset()
{
    m_skipped = 0;
}

void ModuleDelay::skip()
{
    // The delay may end by itself after that. The daemon then waits up to a second for pidof, and
    // two seconds that pass at that moment would end the wait.
    const int maximumAgeMs = 1000;
    const int ended = m_script.log().filter(QStringLiteral("end ")).size();
    if (ended <= m_skipped || m_daemon.children() != 0)
        return;
    // The thread that reaps the script answers after it has started the delay.
    Remote(QStringLiteral("/KyConfigMgr"), QStringLiteral("Users")).call(QStringLiteral("getUser"));
    m_skipped = ended;
    if (m_script.lastChange().msecsTo(QDateTime::currentDateTime()) < maximumAgeMs)
        m_daemon.letTimePass(2);
}
