#include "terminalprogram.h"

#include "deadline.h"

#include <QTest>

#include <fcntl.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace
{
const int rows = 30;
} // namespace

TerminalProgram::TerminalProgram(const QString &program, const QStringList &arguments, int columns)
{
    const winsize size = {rows, static_cast<unsigned short>(columns), 0, 0};
    if (openpty(&m_master, &m_slave, nullptr, nullptr, &size) != 0)
        qFatal("no terminal");
    fcntl(m_master, F_SETFL, O_NONBLOCK);
    fcntl(m_master, F_SETFD, FD_CLOEXEC);
    m_process.terminal = m_slave;
    m_process.start(program, arguments);
    if (!m_process.waitForStarted())
        qFatal("cannot start %s", qPrintable(program));
}

TerminalProgram::~TerminalProgram()
{
    m_process.kill();
    m_process.waitForFinished();
    close(m_slave);
    close(m_master);
}

void TerminalProgram::Process::setupChildProcess()
{
    setsid();
    ioctl(terminal, TIOCSCTTY, 0);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        dup2(terminal, stream);
}

bool TerminalProgram::shows(const QByteArray &text)
{
    return QTest::qWaitFor([&] { return shown().contains(text); }, deadlineMs);
}

QByteArray TerminalProgram::shown()
{
    char buffer[4096];
    ssize_t got = 0;
    while ((got = read(m_master, buffer, sizeof buffer)) > 0)
        m_shown.append(buffer, int(got));
    return m_shown;
}

bool TerminalProgram::echoes() const
{
    termios settings = {};
    return tcgetattr(m_master, &settings) == 0 && (settings.c_lflag & ECHO) != 0;
}

void TerminalProgram::type(const QByteArray &keys)
{
    if (write(m_master, keys.constData(), size_t(keys.size())) != keys.size())
        qFatal("cannot type");
}

void TerminalProgram::resize(int columns)
{
    const winsize size = {rows, static_cast<unsigned short>(columns), 0, 0};
    if (ioctl(m_master, TIOCSWINSZ, &size) != 0)
        qFatal("cannot resize the terminal");
}

int TerminalProgram::waitForEnd()
{
    if (!QTest::qWaitFor([this] { return m_process.state() == QProcess::NotRunning; }, deadlineMs))
        return -1000;
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode()
                                                          : -m_process.exitCode();
}
