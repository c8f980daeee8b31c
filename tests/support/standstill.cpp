#include "standstill.h"

#include "files.h"

#include <QDir>
#include <QTest>

#include <csignal>

namespace
{
/** The state of a thread, "T" for stopped; empty where there is no such thread. */
QByteArray threadState(const QString &folder)
{
    const QByteArray status = readFile(folder + QStringLiteral("/stat"));
    return status.mid(status.lastIndexOf(')') + 2, 1);
}

bool hasEnded(const QString &folder)
{
    const QByteArray state = threadState(folder);
    return state.isEmpty() || state == "Z" || state == "X";
}

bool isStopped(const QString &folder)
{
    const QDir threads(folder + QStringLiteral("/task"));
    const QStringList names = threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &name : names) {
        const QString thread = threads.filePath(name);
        if (threadState(thread) != "T" && !hasEnded(thread))
            return false;
    }
    return true;
}
} // namespace

bool stopProcess(qint64 process)
{
    const QString folder = QStringLiteral("/proc/%1").arg(process);
    if (process <= 0 || kill(pid_t(process), SIGSTOP) != 0)
        return false;
    if (!QTest::qWaitFor([&] { return hasEnded(folder) || isStopped(folder); }, 10000))
        qFatal("process %lld does not stop", static_cast<long long>(process));
    return !hasEnded(folder);
}

bool resumeProcess(qint64 process)
{
    return process > 0 && kill(pid_t(process), SIGCONT) == 0;
}
