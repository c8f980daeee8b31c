#include "simulatedmodescript.h"

#include "deadline.h"
#include "files.h"
#include "networkinterface.h"
#include "processes.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
const QString installed = QStringLiteral("/usr/share/redpine");
const QString script = QStringLiteral("switch_coex_mode.sh");
const QString control = QStringLiteral("/run/strandel-redpine/");

void execute(const QString &program, const QStringList &arguments)
{
    if (QProcess::execute(program, arguments) != 0)
        qFatal("%s %s fails", qPrintable(program), qPrintable(arguments.join(QLatin1Char(' '))));
}
} // namespace

SimulatedModeScript::~SimulatedModeScript()
{
    clear();
}

void SimulatedModeScript::install()
{
    clear();
    QDir().mkpath(installed);
    QDir().mkpath(control);
    const QDir source(QStringLiteral(SIMULATOR_DIRECTORY "/redpine"));
    for (const QString &file : source.entryList(QDir::Files)) {
        if (!QFile::copy(source.filePath(file), installed + QLatin1Char('/') + file))
            qFatal("cannot install %s", qPrintable(file));
    }
}

void SimulatedModeScript::remove()
{
    QFile::remove(installed + QLatin1Char('/') + script);
}

void SimulatedModeScript::clear()
{
    // Processes that a script has started would continue to change the interfaces.
    killCommand(script.toLatin1());
    for (const char *program : {"hostapd", "dhcpd"})
        killProgram(program);
    if (QFile::exists("/sys/class/net/wifi_ap"))
        removeInterface();
    if (m_fifo >= 0)
        close(m_fifo);
    m_fifo = -1;
    emptyDirectory(control);
    emptyDirectory(installed);
}

QStringList SimulatedModeScript::log()
{
    QStringList lines = QString::fromLatin1(readFile(control + "log")).split('\n');
    lines.removeAll(QString());
    return lines;
}

bool SimulatedModeScript::waitFor(const QString &line, int count)
{
    return QTest::qWaitFor([&] { return log().count(line) >= count; }, deadlineMs);
}

void SimulatedModeScript::setDelay(double seconds)
{
    writeFile(control + "delay", QByteArray::number(seconds));
}

void SimulatedModeScript::setFailure(int status)
{
    writeFile(control + "fail", QByteArray::number(status));
}

void SimulatedModeScript::hold()
{
    if (mkfifo(qPrintable(control + "hold"), 0600) != 0)
        qFatal("the scripts are held already");
}

void SimulatedModeScript::letOthersPass()
{
    const QString path = control + "hold";
    // The kernel opens a FIFO for writing without blocking only if a reader has it open. A script
    // has not opened it yet when its "start" appears in the log.
    const auto somebodyWaits = [&] {
        m_fifo = open(qPrintable(path), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
        return m_fifo >= 0;
    };
    if (!QTest::qWaitFor(somebodyWaits, deadlineMs))
        qFatal("no script waits");
    QFile::remove(path);
}

void SimulatedModeScript::release()
{
    if (m_fifo < 0)
        letOthersPass();
    if (write(m_fifo, "\n", 1) != 1)
        qFatal("the waiting script is gone");
    close(m_fifo);
    m_fifo = -1;
}

void SimulatedModeScript::leaveOut(const QString &part)
{
    writeFile(control + "no-" + part, QByteArray());
}

void SimulatedModeScript::setCarrier(bool present)
{
    execute("ip", {"link", "set", "wifi_air", present ? "up" : "down"});
    // wifi_ap gets the carrier of its peer wifi_air only some time after the command.
    if (!QTest::qWaitFor(
            [present] { return isRunning(findNetworkInterface("wifi_ap")) == present; },
            deadlineMs))
        qFatal("the access point's carrier does not change");
}

void SimulatedModeScript::removeInterface()
{
    execute("ip", {"link", "delete", "wifi_ap"});
}
