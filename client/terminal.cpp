#include "terminal.h"

#include "layout.h"
#include "textrules.h"

#include <QStringList>

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace
{
/** Reads a line from stdin without its line feed. Returns false at the end of the input. */
bool readLine(QByteArray &line)
{
    // Read byte by byte: the following lines belong to later calls.
    char byte = 0;
    while (true) {
        const ssize_t got = ::read(STDIN_FILENO, &byte, 1);
        if (got <= 0)
            return got == 0 && !line.isEmpty();
        if (byte == '\n')
            return true;
        line += byte;
    }
}

/**
 * The output for questions to the person at the terminal: stderr, or /dev/tty if stderr is
 * redirected. Without both, the program cannot ask.
 */
class Prompt
{
public:
    Prompt()
        : m_descriptor(isatty(STDERR_FILENO) ? fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0)
                                             : open("/dev/tty", O_WRONLY | O_CLOEXEC | O_NOCTTY))
    {
    }
    ~Prompt()
    {
        if (m_descriptor >= 0)
            close(m_descriptor);
    }
    Prompt(const Prompt &) = delete;
    Prompt &operator=(const Prompt &) = delete;

    bool isPossible() const { return isatty(STDIN_FILENO) && m_descriptor >= 0; }

    void show(const QString &text) const
    {
        const QByteArray bytes = text.toUtf8();
        static_cast<void>(!::write(m_descriptor, bytes.constData(), size_t(bytes.size())));
    }

private:
    int m_descriptor;
};

bool areDetailsWanted = false;

termios ordinary = {};

/** Restores the echo when a signal ends the program at the prompt. */
void restoreTerminal(int signal)
{
    tcsetattr(STDIN_FILENO, TCSANOW, &ordinary);
    static_cast<void>(raise(signal));
}

/** Installs @p handler for the signals that can end the program at the prompt. */
void handleEnd(void (*handler)(int))
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        struct sigaction action = {};
        action.sa_handler = handler;
        // The handler raises the signal again, which then ends the program.
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        sigaction(signal, &action, nullptr);
    }
}

/** Switches the echo off, until the program ends or showInput() is called. */
void hideInput()
{
    handleEnd(restoreTerminal);
    termios hidden = ordinary;
    hidden.c_lflag &= ~tcflag_t(ECHO);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &hidden);
}

void showInput()
{
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &ordinary);
    handleEnd(SIG_DFL);
}

void print(std::FILE *stream, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    // The stream stores a failed write; see isAllPrinted().
    static_cast<void>(std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream));
    static_cast<void>(std::fflush(stream));
}

/** Returns the columns and rows of the terminal at stdout; zeros if stdout is not a terminal. */
winsize terminalSize()
{
    winsize size = {};
    if (!isatty(STDOUT_FILENO) || ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0)
        return {};
    return size;
}

bool hasColours(int stream)
{
    const QByteArray terminal = qgetenv("TERM");
    return isatty(stream) && qEnvironmentVariableIsEmpty("NO_COLOR") && !terminal.isEmpty() &&
           terminal != "dumb";
}

/** Escapes control characters in every line: a hostile network name must not move the cursor. */
QString safeLines(const QString &text)
{
    QStringList lines = text.split(QLatin1Char('\n'));
    for (QString &line : lines)
        line = shown(line);
    return lines.join(QLatin1Char('\n'));
}
} // namespace

void show(const QString &text)
{
    const QString lines = wrapped(safeLines(text), terminalSize().ws_col);
    print(hasColours(STDOUT_FILENO) ? coloured(lines) : lines);
}

void explain(const QString &text)
{
    print(wrapped(text, terminalSize().ws_col));
}

bool isShownAtTerminal()
{
    return isatty(STDOUT_FILENO);
}

void takeScreen()
{
    print(QStringLiteral("\033[?1049h\033[?25l"));
}

void drawScreen(const QString &text)
{
    const winsize size = terminalSize();
    QStringList lines = wrapped(safeLines(text.trimmed()), size.ws_col).split(QLatin1Char('\n'));
    if (size.ws_row > 0 && lines.size() > size.ws_row)
        lines = lines.mid(0, size.ws_row);
    QString screen = QStringLiteral("\033[H");
    for (int index = 0; index < lines.size(); ++index)
        screen += (index == 0 ? QString() : QStringLiteral("\r\n")) +
                  (hasColours(STDOUT_FILENO) ? coloured(lines.at(index)) : lines.at(index)) +
                  QStringLiteral("\033[K");
    print(screen + QStringLiteral("\033[J"));
}

void giveScreenBack()
{
    print(QStringLiteral("\033[?25h\033[?1049l"));
}

void print(const QString &text)
{
    print(stdout, text);
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
    const QString name = QStringLiteral("kyboardctl:");
    print(stderr, (hasColours(STDERR_FILENO) ? alarming(name) : name) + QLatin1Char(' ') +
                      safeLines(text) + QLatin1Char('\n'));
    if (areDetailsWanted && !detail.isEmpty())
        print(stderr, QStringLiteral("kyboardctl: ") + detail + QLatin1Char('\n'));
}

void showProgress(const QString &text)
{
    if (isatty(STDERR_FILENO))
        print(stderr, QStringLiteral("\r\033[K") + text);
}

void clearProgress()
{
    showProgress(QString());
}

Consent askFor(const QString &question)
{
    const Prompt prompt;
    if (!prompt.isPossible())
        return Consent::NobodyThere;
    prompt.show(question + QStringLiteral("? [y/N] "));
    QByteArray line;
    const QByteArray answer = readLine(line) ? line.trimmed().toLower() : QByteArray();
    return answer == "y" || answer == "yes" ? Consent::Given : Consent::Refused;
}

bool readSecret(const QString &name, QString &secret)
{
    const Prompt prompt;
    const bool isTyped = prompt.isPossible() && tcgetattr(STDIN_FILENO, &ordinary) == 0;
    if (!isTyped && isatty(STDIN_FILENO))
        return false;
    if (isTyped) {
        prompt.show(name + QStringLiteral(": "));
        hideInput();
    }
    QByteArray line;
    const bool isRead = readLine(line);
    if (isTyped) {
        showInput();
        prompt.show(QStringLiteral("\n"));
    }
    secret = QString::fromUtf8(line);
    return isRead;
}
