#include "board.h"

#include "files.h"

#include "boardfolder.h"

#include <QFile>
#include <QTest>

namespace
{
const QString journalFile = QStringLiteral("journal");
const QString faultFolder = QStringLiteral("faults");
const int deadline = 20000;
} // namespace

void Board::reset()
{
    emptyFolder(pathOf(QString()));
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
    return QTest::qWaitFor([&] { return get(path) == value; }, deadline);
}

bool Board::waitForJournal(const QString &line)
{
    return QTest::qWaitFor([&] { return journal().contains(line); }, deadline);
}

void Board::fault(const QString &operation, const QString &words)
{
    set(faultFolder + QLatin1Char('/') + operation, words);
}

void Board::clearFaults()
{
    emptyFolder(pathOf(faultFolder));
}

QString Board::pathOf(const QString &path)
{
    return QString::fromStdString(board::pathOf(path.toStdString()));
}
