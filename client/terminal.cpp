#include "terminal.h"

#include <csignal>
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

bool areDetailsWanted = false;

termios shown = {};

/** Whoever ends the program at the prompt keeps a terminal that shows what is typed. */
void restoreTerminal(int signal)
{
    tcsetattr(STDIN_FILENO, TCSANOW, &shown);
    static_cast<void>(raise(signal));
}

/** Has @p handler take the signals that end a program at the prompt. */
void handleEnd(void (*handler)(int))
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        struct sigaction action = {};
        action.sa_handler = handler;
        // The signal that is raised in the handler comes after it, and ends the program.
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        sigaction(signal, &action, nullptr);
    }
}

/** Hides what is typed, until the program ends or showInput() is called. */
void hideInput()
{
    handleEnd(restoreTerminal);
    termios hidden = shown;
    hidden.c_lflag &= ~tcflag_t(ECHO);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &hidden);
}

void showInput()
{
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &shown);
    handleEnd(SIG_DFL);
}

void write(std::FILE *stream, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    // The stream remembers that something was lost.
    static_cast<void>(std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream));
    static_cast<void>(std::fflush(stream));
}
} // namespace

void print(const QString &text)
{
    write(stdout, text);
}

bool isAllPrinted()
{
    return std::ferror(stdout) == 0;
}

void showDetails()
{
    areDetailsWanted = true;
}

void complain(const QString &text, const QString &detail)
{
    clearProgress();
    write(stderr, QStringLiteral("kyboardctl: ") + text + QLatin1Char('\n'));
    if (areDetailsWanted && !detail.isEmpty())
        write(stderr, QStringLiteral("kyboardctl: ") + detail + QLatin1Char('\n'));
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

Consent askFor(const QString &question)
{
    if (!isatty(STDIN_FILENO))
        return Consent::NobodyThere;
    write(stderr, question + QStringLiteral("? [y/N] "));
    QByteArray line;
    const QByteArray answer = readLine(line) ? line.trimmed().toLower() : QByteArray();
    return answer == "y" || answer == "yes" ? Consent::Given : Consent::Refused;
}

bool readSecret(const QString &prompt, QString &secret)
{
    const bool isTerminal = isatty(STDIN_FILENO) && tcgetattr(STDIN_FILENO, &shown) == 0;
    if (isTerminal) {
        write(stderr, prompt + QStringLiteral(": "));
        hideInput();
    }
    QByteArray line;
    const bool isRead = readLine(line);
    if (isTerminal) {
        showInput();
        write(stderr, QStringLiteral("\n"));
    }
    secret = QString::fromUtf8(line);
    return isRead;
}
