#ifndef TERMINALPROGRAM_H
#define TERMINALPROGRAM_H

#include <QByteArray>
#include <QProcess>

/** A program on a pseudo-terminal that the test controls. */
class TerminalProgram
{
public:
    /** Starts @p program with the terminal as its input and output. */
    TerminalProgram(const QString &program, const QStringList &arguments, int columns = 80);
    ~TerminalProgram();
    TerminalProgram(const TerminalProgram &) = delete;
    TerminalProgram &operator=(const TerminalProgram &) = delete;

    /** Waits until the terminal has shown @p text. */
    bool shows(const QByteArray &text);

    /** The complete output of the terminal. */
    QByteArray shown();

    /** Returns true if the terminal echoes input. */
    bool echoes() const;

    void type(const QByteArray &keys);

    /** Changes the width of the terminal. */
    void resize(int columns);

    qint64 processId() const { return m_process.processId(); }

    /**
     * Waits for the end.
     *
     * @return the exit status; the negated number of the signal that ended the program; -1000 if it
     *         still runs at the deadline
     */
    int waitForEnd();

private:
    class Process : public QProcess
    {
    public:
        int terminal = -1;

    protected:
        void setupChildProcess() override;
    };

    int m_master;
    int m_slave;
    Process m_process;
    QByteArray m_shown;
};

#endif
