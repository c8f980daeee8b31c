#ifndef BOARD_H
#define BOARD_H

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

/**
 * The simulated board: its files, its journal, and its faults.
 *
 * Files have paths relative to the board's directory, for example "als/lux".
 */
class Board
{
public:
    /** Resets the board, removes all faults and empties the journal. */
    static void reset();

    /** Writes or reads a value, without its newline. Reading a missing file returns null. */
    static void set(const QString &path, const QString &value);
    static QString get(const QString &path);

    /** Writes or reads the whole content of a file. */
    static void setBytes(const QString &path, const QByteArray &content);
    static QByteArray bytes(const QString &path);

    static void remove(const QString &path);

    /** Sets the model in the instrument record, for example 0x8345. */
    static void setModel(ushort model);

    /** All library calls since the last clearJournal(), without their times, in order. */
    static QStringList journal();
    static void clearJournal();

    /**
     * The times of the library calls that begin with @p call, in seconds on the clock of the
     * process that made the call.
     */
    static QList<double> times(const QString &call);

    /**
     * Waits until a file has @p value, or until the journal has @p line. Returns false at the
     * deadline (deadline.h).
     */
    static bool waitFor(const QString &path, const QString &value);
    static bool waitForJournal(const QString &line);

    /**
     * Makes the library call @p operation, for example "KyAls.readLux", faulty. With the words
     * "always", every call fails; with "2 delay 100", the next two calls fail after 100 ms.
     */
    static void fault(const QString &operation, const QString &words);
    static void clearFaults();

    /**
     * Handles a storage device as a person or the system does: @p action is insert, remove, mount
     * or unmount, @p device SD or USB. The kernel announces insertions and removals.
     */
    static bool storage(const QString &action, const QString &device);

    /** Sends a kernel event with exactly this content to every listener in this world. */
    static bool sendKernelEvent(const QByteArray &message, int count = 1);

    /** Returns the absolute path of @p path. */
    static QString pathOf(const QString &path);
};

/** Blocks all writes to the board during its lifetime. */
class HeldBoard
{
public:
    HeldBoard();
    ~HeldBoard();
    HeldBoard(const HeldBoard &) = delete;
    HeldBoard &operator=(const HeldBoard &) = delete;

private:
    int m_directory;
};

#endif
