#include "processes.h"

#include "deadline.h"
#include "files.h"

#include <QDir>
#include <QTest>

#include <algorithm>
#include <csignal>

namespace
{
/** The numeric entries of @p directory. */
QList<int> numbersIn(const QString &directory)
{
    QList<int> numbers;
    const QStringList names = QDir(directory).entryList(QDir::Dirs);
    for (const QString &name : names) {
        if (name.toInt() > 0)
            numbers << name.toInt();
    }
    return numbers;
}

QByteArray fileOf(qint64 thread, const char *name)
{
    return readFile(QStringLiteral("/proc/%1/%2").arg(thread).arg(QLatin1String(name)));
}

/**
 * The fields after the name, which is in parentheses and may contain any character: state, parent.
 */
QList<QByteArray> statOf(qint64 thread)
{
    const QByteArray stat = fileOf(thread, "stat");
    return stat.mid(stat.lastIndexOf(')') + 2).split(' ');
}

bool isStopped(qint64 process)
{
    const QList<int> threads = threadsOf(process);
    return std::all_of(threads.begin(), threads.end(),
                       [](int thread) { return stateOf(thread) == "T" || hasEnded(thread); });
}

void killAndWait(int process)
{
    if (kill(process, SIGKILL) == 0 &&
        !QTest::qWaitFor([process] { return hasEnded(process); }, deadlineMs))
        qFatal("process %d does not end", process);
}

/** Stops a process before its children are killed, so that it starts no more of them. */
void killTree(int process)
{
    if (!stopProcess(process))
        return;
    const QList<int> children = childrenOf(process);
    for (const int child : children)
        killTree(child);
    killAndWait(process);
}
} // namespace

QList<int> processes()
{
    return numbersIn(QStringLiteral("/proc"));
}

QList<int> childrenOf(qint64 process)
{
    QList<int> children;
    const QList<int> all = processes();
    for (const int other : all) {
        if (statOf(other).value(1).toLongLong() == process)
            children << other;
    }
    return children;
}

QList<int> threadsOf(qint64 process)
{
    return numbersIn(QStringLiteral("/proc/%1/task").arg(process));
}

QByteArray stateOf(qint64 thread)
{
    return statOf(thread).value(0);
}

bool hasEnded(qint64 thread)
{
    const QByteArray state = stateOf(thread);
    return state.isEmpty() || state == "Z" || state == "X";
}

QByteArray statusOf(qint64 thread, const QByteArray &field)
{
    const QList<QByteArray> lines = fileOf(thread, "status").split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(field + ':'))
            return line.mid(field.size() + 1).trimmed().split(' ').first();
    }
    return QByteArray();
}

QStringList descriptorsOf(qint64 process)
{
    QStringList targets;
    const QFileInfoList entries =
        QDir(QStringLiteral("/proc/%1/fd").arg(process))
            .entryInfoList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System);
    for (const QFileInfo &entry : entries)
        targets << entry.symLinkTarget();
    return targets;
}

bool stopProcess(qint64 process)
{
    if (process <= 0 || kill(pid_t(process), SIGSTOP) != 0)
        return false;
    if (!QTest::qWaitFor([&] { return hasEnded(process) || isStopped(process); }, deadlineMs))
        qFatal("process %lld does not stop", static_cast<long long>(process));
    return !hasEnded(process);
}

bool resumeProcess(qint64 process)
{
    return process > 0 && kill(pid_t(process), SIGCONT) == 0;
}

void killCommand(const QByteArray &text)
{
    const QList<int> all = processes();
    for (const int process : all) {
        if (fileOf(process, "cmdline").contains(text))
            killTree(process);
    }
}

void killProgram(const QByteArray &name)
{
    const QList<int> all = processes();
    for (const int process : all) {
        if (fileOf(process, "comm").trimmed() == name)
            killAndWait(process);
    }
}
