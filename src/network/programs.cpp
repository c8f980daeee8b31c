#include "programs.h"

#include <QProcess>
#include <QStringList>

namespace
{
constexpr int pidofTimeMs = 1000;
} // namespace

bool isProgramRunning(const QString &name)
{
    // The QProcess deletes itself when pidof ends. An earlier deletion would wait for pidof: the
    // destructor of a running QProcess can block even after kill().
    auto *pidof = new QProcess;
    QObject::connect(
        pidof, static_cast<void (QProcess::*)(int, QProcess::ExitStatus)>(&QProcess::finished),
        pidof, &QObject::deleteLater);
    pidof->start(QStringLiteral("pidof"), QStringList(name), QIODevice::ReadWrite);
    const bool ended = pidof->waitForFinished(pidofTimeMs);
    const bool found =
        ended && pidof->exitStatus() == QProcess::NormalExit && pidof->exitCode() == 0;
    if (pidof->state() == QProcess::NotRunning)
        pidof->deleteLater();
    else
        pidof->kill();
    return found;
}
