#include "board.h"

#include "deadline.h"
#include "files.h"

#include "boarddirectory.h"
#include "records.h"

#include <QFile>
#include <QProcess>
#include <QTest>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace
{
const QString journalFile = QStringLiteral("journal");
const QString faultDirectory = QStringLiteral("faults");

bool run(const QString &program, const QStringList &arguments, const QByteArray &input = {})
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    return process.waitForFinished() && process.exitStatus() == QProcess::NormalExit &&
           process.exitCode() == 0;
}

/** Removes a device that a previous test inserted: otherwise it could not be inserted again. */
void removeStorage(const QString &device, const QString &partition)
{
    if (QFile::exists(QStringLiteral("/sys/class/net/") + partition))
        Board::storage(QStringLiteral("remove"), device);
}
} // namespace

void Board::reset()
{
    removeStorage(QStringLiteral("SD"), QStringLiteral("mmcblk0p1"));
    removeStorage(QStringLiteral("USB"), QStringLiteral("sda1"));
    emptyDirectory(pathOf(QString()));
    board::create();
    setBytes(journalFile, QByteArray());
}

void Board::set(const QString &path, const QString &value)
{
    setBytes(path, value.toUtf8() + '\n');
}

QString Board::get(const QString &path)
{
    const QByteArray content = bytes(path);
    return content.isNull() ? QString() : QString::fromUtf8(content.trimmed());
}

void Board::setBytes(const QString &path, const QByteArray &content)
{
    if (!board::writeFile(path.toStdString(), content.toStdString()))
        qFatal("cannot write %s", qPrintable(pathOf(path)));
}

QByteArray Board::bytes(const QString &path)
{
    return readFile(pathOf(path));
}

void Board::remove(const QString &path)
{
    QFile::remove(pathOf(path));
}

QList<double> Board::times(const QString &call)
{
    QList<double> times;
    for (const QString &line : QString::fromUtf8(bytes(journalFile)).split(QLatin1Char('\n'))) {
        const int blank = line.indexOf(QLatin1Char(' '));
        if (blank > 0 && line.midRef(blank + 1).startsWith(call))
            times << line.leftRef(blank).toDouble();
    }
    return times;
}

void Board::setModel(ushort model)
{
    const int crcSize = 2;
    const int recordSize = 74;
    const int modelOffset = 6;
    const QString file = QStringLiteral("eeprom/instrument");
    QByteArray image = bytes(file);
    image[modelOffset] = static_cast<char>(model >> 8);
    image[modelOffset + 1] = static_cast<char>(model);
    const ushort crc = board::crc16(image.mid(crcSize, recordSize - crcSize).toStdString());
    image[0] = static_cast<char>(crc >> 8);
    image[1] = static_cast<char>(crc);
    setBytes(file, image);
}

QStringList Board::journal()
{
    QStringList lines = QString::fromUtf8(bytes(journalFile)).split(QLatin1Char('\n'));
    lines.removeLast();
    for (QString &line : lines)
        line.remove(0, line.indexOf(QLatin1Char(' ')) + 1);
    return lines;
}

void Board::clearJournal()
{
    QFile::resize(pathOf(journalFile), 0);
}

bool Board::waitFor(const QString &path, const QString &value)
{
    return QTest::qWaitFor([&] { return get(path) == value; }, deadlineMs);
}

bool Board::waitForJournal(const QString &line)
{
    return QTest::qWaitFor([&] { return journal().contains(line); }, deadlineMs);
}

void Board::fault(const QString &operation, const QString &words)
{
    set(faultDirectory + QLatin1Char('/') + operation, words);
}

void Board::clearFaults()
{
    emptyDirectory(pathOf(faultDirectory));
}

bool Board::storage(const QString &action, const QString &device)
{
    return run(QStringLiteral(STORAGE_PROGRAM), {action, device});
}

bool Board::sendKernelEvent(const QByteArray &message, int count)
{
    return run(QStringLiteral(UEVENT_PROGRAM),
               {QStringLiteral("--count"), QString::number(count), QStringLiteral("-")}, message);
}

QString Board::pathOf(const QString &path)
{
    return QString::fromStdString(board::pathOf(path.toStdString()));
}

HeldBoard::HeldBoard()
    : m_directory(open(qPrintable(Board::pathOf(QString())), O_RDONLY | O_DIRECTORY))
{
    if (flock(m_directory, LOCK_EX) != 0)
        qFatal("cannot hold the board");
}

HeldBoard::~HeldBoard()
{
    close(m_directory);
}
