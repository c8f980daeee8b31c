#include "air.h"

#include <QDir>
#include <QFile>

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace
{
/** Limits the read of a line. No valid value of an access point is as long. */
constexpr qint64 longestText = 1000;

struct Default {
    const char *directory;
    const char *ssid;
    const char *signal;
    const char *security;
    const char *passphrase;
    const char *hidden;
    const char *refuses;
};

const Default defaults[] = {
    {"cafe", "Cafe", "-55", "open", "", "0", "0"},
    {"workshop", "Workshop", "-48", "wpa2", "seven seas", "0", "0"},
    {"vault", "Vault", "-62", "wpa2", "open sesame", "1", "0"},
    {"hall_near", "Hall", "-58", "wpa2", "echo chamber", "0", "0"},
    {"hall_far", "Hall", "-79", "wpa2", "echo chamber", "0", "0"},
    {"grumpy", "Grumpy", "-70", "wpa2", "never ever", "0", "1"},
};

void write(const QString &path, const char *text)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(QByteArray(text) + '\n') < 0) {
        static_cast<void>(
            std::fprintf(stderr, "wpa_supplicant: cannot write %s\n", qPrintable(path)));
        std::exit(EXIT_FAILURE);
    }
}

void create(const QString &air)
{
    for (const Default &accessPoint : defaults) {
        const QString directory = air + '/' + QLatin1String(accessPoint.directory);
        QDir().mkpath(directory);
        write(directory + QStringLiteral("/ssid"), accessPoint.ssid);
        write(directory + QStringLiteral("/signal"), accessPoint.signal);
        write(directory + QStringLiteral("/security"), accessPoint.security);
        write(directory + QStringLiteral("/passphrase"), accessPoint.passphrase);
        write(directory + QStringLiteral("/hidden"), accessPoint.hidden);
        write(directory + QStringLiteral("/in_range"), "1");
        write(directory + QStringLiteral("/refuses"), accessPoint.refuses);
    }
}

/** Returns the first line of every file in @p directory. */
QMap<QString, QByteArray> texts(const QString &directory)
{
    const QStringList names = QDir(directory).entryList(QDir::Files);
    QMap<QString, QByteArray> result;
    for (const QString &name : names) {
        QFile file(directory + '/' + name);
        if (!file.open(QIODevice::ReadOnly))
            continue;
        QByteArray line = file.readLine(longestText);
        if (line.endsWith('\n'))
            line.chop(1);
        result.insert(name, line);
    }
    return result;
}

/** Returns the names of the access points in @p directory. */
QStringList namesIn(const QString &directory)
{
    return QDir(directory).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
}
} // namespace

Air::Air() : m_directory(qEnvironmentVariable("STRANDEL_AIR", QStringLiteral("/run/strandel-air")))
{
    if (!QDir(m_directory).exists())
        create(m_directory);
    QObject::connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &Air::changed);
    QObject::connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &Air::changed);
    read();
}

const AccessPoints &Air::accessPoints()
{
    read();
    return m_accessPoints;
}

void Air::read()
{
    // Watch before reading, so that no change is missed.
    watch();
    const QStringList names = namesIn(m_directory);
    AccessPoints found;
    for (const QString &name : names) {
        const AccessPoint accessPoint =
            accessPointFrom(texts(m_directory + '/' + name), m_accessPoints.value(name));
        if (!accessPoint.ssid.isEmpty())
            found.insert(name, accessPoint);
    }
    m_accessPoints = found;
}

void Air::watch()
{
    const QStringList names = namesIn(m_directory);
    QStringList paths{m_directory};
    for (const QString &name : names) {
        const QDir directory(m_directory + '/' + name);
        const QStringList files = directory.entryList(QDir::Files);
        paths << directory.path();
        for (const QString &file : files)
            paths << directory.filePath(file);
    }
    for (const QString &path : std::as_const(paths))
        m_watcher.addPath(path);
}
