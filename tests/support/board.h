#ifndef BOARD_H
#define BOARD_H

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

/**
 * The simulated board as a test sees it: its files, its journal, and the faults it is given.
 *
 * Files are named by their place in the board's directory, as in "als/lux".
 */
class Board
{
public:
    /** Makes the board a new one, with no faults and an empty journal. */
    static void reset();

    /** Writes and reads a value as text, without the line's end; null where there is no file. */
    static void set(const QString &path, const QString &value);
    static QString get(const QString &path);

    /** Write and read the whole content of a file. */
    static void setBytes(const QString &path, const QByteArray &content);
    static QByteArray bytes(const QString &path);

    static void remove(const QString &path);

    /** Makes the instrument record one of @p model, as in 0x8345. */
    static void setModel(ushort model);

    /** Every library call since the last clearJournal(), without its time, in order. */
    static QStringList journal();
    static void clearJournal();

    /** When each library call that begins with @p call was made, in seconds as its process counts.
     */
    static QList<double> times(const QString &call);

    /** Waits until a file holds @p value, or until the journal holds @p line; false after 20 s. */
    static bool waitFor(const QString &path, const QString &value);
    static bool waitForJournal(const QString &line);

    /** Gives @p operation, as in "KyAls.readLux", a fault, as in "always" or "2 delay 100". */
    static void fault(const QString &operation, const QString &words);
    static void clearFaults();

    /**
     * Does what a hand or the system does with a storage device: @p action is insert, remove, mount
     * or unmount, @p device SD or USB. The kernel tells of insertions and removals.
     */
    static bool storage(const QString &action, const QString &device);

    /** Tells every listener in this world of a kernel event with just this content. */
    static bool sendKernelEvent(const QByteArray &message, int count = 1);

    /** Where @p path is in the file system. */
    static QString pathOf(const QString &path);
};

/** Keeps every write to the board waiting as long as it lives. */
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
