#include "files.h"

#include <QFile>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

void writeFile(const QString &path, const QByteArray &content)
{
    const fs::path target = path.toStdString();
    fs::create_directories(target.parent_path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
        file.write(content) != content.size() || !file.flush())
        qFatal("cannot write %s", qPrintable(path));
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void removePath(const QString &path)
{
    std::error_code error;
    fs::remove_all(path.toStdString(), error);
}

void emptyDirectory(const QString &directory)
{
    std::error_code error;
    for (const fs::directory_entry &entry : fs::directory_iterator(directory.toStdString(), error))
        fs::remove_all(entry.path());
}

QStringList snapshot(const QString &directory)
{
    QStringList lines;
    std::error_code error;
    const fs::path root = directory.toStdString();
    for (const fs::directory_entry &entry : fs::recursive_directory_iterator(root, error)) {
        QString line = QString::fromStdString(fs::relative(entry.path().parent_path(), root) /
                                              entry.path().filename());
        if (line.startsWith(QLatin1String("./")))
            line.remove(0, 2);
        if (entry.is_symlink())
            line += QStringLiteral("->") +
                    QString::fromStdString(fs::read_symlink(entry.path()).string());
        else if (entry.is_regular_file())
            line += QLatin1Char('=') +
                    QString::fromUtf8(readFile(QString::fromStdString(entry.path().string())));
        lines << line;
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}
