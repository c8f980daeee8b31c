#include "surroundings.h"

#include "boarddirectory.h"
#include "defaults.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <utility>

namespace
{
/** Returns at most 8192 bytes of @p path, more than an EEPROM has; null if it is no file. */
QByteArray contentOf(const QString &path)
{
    // A FIFO would block us.
    if (!QFileInfo(path).isFile())
        return {};
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(8192) : QByteArray();
}

QString boardPath(const QString &file)
{
    return QString::fromStdString(board::pathOf(file.toStdString()));
}

/** 1 if the process in @p pidFile is stopped, 0 if it runs, -1 if there is none. */
int isStopped(const QString &pidFile)
{
    const QByteArray pid = contentOf(pidFile).trimmed();
    QFile status(QStringLiteral("/proc/%1/stat").arg(QString::fromLatin1(pid)));
    if (pid.isEmpty() || !status.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray line = status.readAll();
    return line.mid(line.lastIndexOf(')') + 2, 1) == "T" ? 1 : 0;
}

int cableState()
{
    // Read the carrier of "socket", the interface below eth0: ConnMan takes eth0 down, but never
    // "socket".
    QFile carrier(QStringLiteral("/sys/class/net/socket/carrier"));
    if (!carrier.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray value = carrier.readAll().trimmed();
    return value == "1" ? 1 : value == "0" ? 0 : -1;
}

QVector<AirPoint> pointsInTheAir()
{
    const QString air = qEnvironmentVariable("STRANDEL_AIR", QStringLiteral("/run/strandel-air"));
    QVector<AirPoint> points;
    const QStringList directories = QDir(air).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &directory : directories) {
        const auto value = [&](const char *property) {
            return contentOf(air + QLatin1Char('/') + directory + QLatin1Char('/') +
                             QLatin1String(property))
                .trimmed();
        };
        AirPoint point;
        point.directory = directory;
        point.ssid = QString::fromUtf8(value("ssid"));
        if (point.ssid.isEmpty())
            continue;
        bool isNumber = false;
        const int signal = value("signal").toInt(&isNumber);
        if (isNumber)
            point.signal = signal;
        point.isInRange = value("in_range") != "0";
        point.isHidden = value("hidden") == "1";
        point.isProtected = value("security") == "wpa2";
        points << point;
    }
    return points;
}
} // namespace

void readBoard(Instrument &instrument)
{
    instrument.board.clear();
    QStringList names{QStringLiteral("held")};
    for (const board::DefaultFile &file : board::defaultFiles())
        names << QString::fromStdString(file.name);
    for (const char *directory : {"soc", "faults"}) {
        const QStringList files =
            QDir(boardPath(QString::fromLatin1(directory))).entryList(QDir::Files);
        for (const QString &name : files)
            names << QString::fromLatin1(directory) + QLatin1Char('/') + name;
    }
    for (const QString &name : std::as_const(names)) {
        const QByteArray content = contentOf(boardPath(name));
        if (!content.isNull())
            instrument.board.insert(name, content);
    }
    const QString feeds = QStringLiteral("watchdog/feeds");
    instrument.fedBefore = -1;
    if (instrument.board.value(feeds).trimmed().toLongLong() > 0)
        instrument.fedBefore = std::max<qint64>(
            0, QFileInfo(boardPath(feeds)).lastModified().msecsTo(QDateTime::currentDateTime()));
}

void readSurroundings(Instrument &instrument)
{
    instrument.speed =
        std::max(1, contentOf(QStringLiteral("/run/strandel-speed")).trimmed().toInt());
    instrument.isCableIn = cableState();
    instrument.isDhcpMute = isStopped(QStringLiteral("/run/ethernet-dhcp.pid"));
    instrument.isWifiDhcpMute = isStopped(QStringLiteral("/run/wifi-dhcp.pid"));
    instrument.air = pointsInTheAir();
}
