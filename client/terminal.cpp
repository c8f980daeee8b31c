#include "terminal.h"

#include <cstdio>
#include <termios.h>
#include <unistd.h>

namespace
{
/** Reads a line, without its end; false at the end of the input. */
bool readLine(QByteArray &line)
{
    // Byte by byte: what follows the line belongs to the next reader.
    char byte = 0;
    while (true) {
        const ssize_t got = read(STDIN_FILENO, &byte, 1);
        if (got <= 0)
            return got == 0 && !line.isEmpty();
        if (byte == '\n')
            return true;
        line += byte;
    }
}

void write(std::FILE *stream, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
    std::fflush(stream);
}
} // namespace

void print(const QString &text)
{
    write(stdout, text);
}

void complain(const QString &text)
{
    clearProgress();
    write(stderr, QStringLiteral("kyboardctl: ") + text + QLatin1Char('\n'));
}

void showProgress(const QString &text)
{
    if (isatty(STDERR_FILENO))
        write(stderr, QStringLiteral("\r\033[K") + text);
}

void clearProgress()
{
    showProgress(QString());
}

bool readSecret(const QString &prompt, QString &secret)
{
    termios shown = {};
    const bool isTerminal = isatty(STDIN_FILENO) && tcgetattr(STDIN_FILENO, &shown) == 0;
    if (isTerminal) {
        write(stderr, prompt + QStringLiteral(": "));
        termios hidden = shown;
        hidden.c_lflag &= ~tcflag_t(ECHO);
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &hidden);
    }
    QByteArray line;
    const bool isRead = readLine(line);
    if (isTerminal) {
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &shown);
        write(stderr, QStringLiteral("\n"));
    }
    secret = QString::fromUtf8(line);
    return isRead;
}
