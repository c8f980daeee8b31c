#include "logging.h"

#include <QString>
#include <QtGlobal>

#include <climits>
#include <csignal>
#include <mutex>
#include <poll.h>
#include <unistd.h>

void writeWithoutWaiting(int descriptor, const char *text, size_t size)
{
    // A pipe that poll() reports as writable accepts PIPE_BUF bytes. Write only half as many: a
    // signal handler may write its own short line between poll() and write(). The file descriptor
    // must stay blocking, because other processes share it.
    const size_t most = PIPE_BUF / 2;
    while (size > 0) {
        pollfd ready = {descriptor, POLLOUT, 0};
        if (poll(&ready, 1, 0) != 1 || !(ready.revents & POLLOUT))
            return;
        const ssize_t written = write(descriptor, text, size < most ? size : most);
        if (written <= 0)
            return;
        text += written;
        size -= size_t(written);
    }
}

namespace
{
std::mutex logMutex;

void logMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    const QString text = qFormatLogMessage(type, context, message);
    // The message pattern can suppress a message.
    if (text.isNull())
        return;
    const QByteArray line = text.toLocal8Bit() + '\n';
    const std::lock_guard<std::mutex> lock(logMutex);
    writeWithoutWaiting(STDERR_FILENO, line.constData(), size_t(line.size()));
}
} // namespace

void logWithoutWaiting()
{
    qInstallMessageHandler(logMessage);
    // Install a handler, not SIG_IGN: child processes would inherit an ignored signal across
    // exec().
    struct sigaction present = {};
    struct sigaction action = {};
    action.sa_handler = [](int) {};
    action.sa_flags = SA_RESTART;
    if (sigaction(SIGPIPE, nullptr, &present) == 0 && present.sa_handler == SIG_DFL)
        sigaction(SIGPIPE, &action, nullptr);
}
