#include "softwareversion.h"

#include "regularfile.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>

#include <memory>

namespace
{
constexpr int longestVersionBytes = 256 * 1024;
constexpr int chunkBytes = 64 * 1024;
constexpr int timeoutMs = 3000;

using Finished = void (QProcess::*)(int, QProcess::ExitStatus);

/** Waits until @p process ends, the timeout expires or the output is too long for a version. */
void waitForEnd(QProcess &process)
{
    QElapsedTimer timer;
    timer.start();
    while (process.bytesAvailable() <= longestVersionBytes) {
        const int remaining = timeoutMs - static_cast<int>(timer.elapsed());
        if (remaining <= 0 || !process.waitForReadyRead(remaining))
            break;
    }
    // The process can close its output before it ends.
    const int remaining = timeoutMs - static_cast<int>(timer.elapsed());
    if (process.bytesAvailable() <= longestVersionBytes && remaining > 0)
        process.waitForFinished(remaining);
}
} // namespace

std::optional<QByteArray> readBspVersion()
{
    QFile file;
    if (!openForReading(file, QStringLiteral("/etc/sw_version"),
                        QIODevice::ReadOnly | QIODevice::Text))
        return std::nullopt;
    QByteArray line;
    QByteArray chunk;
    do {
        chunk = file.read(chunkBytes);
        line += chunk;
    } while (!chunk.isEmpty() && !chunk.contains('\n') && line.size() <= longestVersionBytes);
    line = line.mid(0, line.indexOf('\n'));
    if (line.size() > longestVersionBytes)
        return std::nullopt;
    return line.trimmed();
}

std::optional<QByteArray> askApplicationVersion()
{
    std::unique_ptr<QProcess> process(new QProcess);
    process->setStandardErrorFile(QProcess::nullDevice());
    process->start(QStringLiteral("/opt/KyApp"), {QStringLiteral("-V")});
    waitForEnd(*process);
    if (process->state() != QProcess::NotRunning) {
        process->kill();
        // Reaped asynchronously on SIGCHLD.
        QProcess *killed = process.release();
        QObject::connect(killed, static_cast<Finished>(&QProcess::finished), killed,
                         &QObject::deleteLater);
        return std::nullopt;
    }
    if (process->error() == QProcess::FailedToStart ||
        process->exitStatus() != QProcess::NormalExit || process->exitCode() != 0 ||
        process->bytesAvailable() > longestVersionBytes)
        return std::nullopt;
    return process->readAllStandardOutput().trimmed();
}

QVariantMap readSoftwareVersions()
{
    QVariantMap versions;
    if (const auto version = readBspVersion())
        versions.insert(QStringLiteral("BSP"), *version);
    versions.insert(QStringLiteral("KyBoardManager"), QCoreApplication::applicationVersion());
    if (const auto version = askApplicationVersion())
        versions.insert(QStringLiteral("KyApp"), *version);
    return versions;
}
