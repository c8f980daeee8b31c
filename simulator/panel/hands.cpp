#include "hands.h"

#include "boarddirectory.h"
#include "look.h"

#include <QRegularExpression>

#include <cmath>

const QVector<FaultChoice> faultChoices = {
    {"fails", "always"},
    {"fails once", "1"},
    {"hangs until it is healed", "hold"},
    {"takes two seconds", "delay 2000"},
    {"lies", "garbage"},
};

namespace
{
const QString track = QStringLiteral("-track");

QString say(const char *program, const QString &argument)
{
    return QString::fromLatin1(program) + QLatin1Char(' ') + argument;
}

QString quoted(const QString &word)
{
    static const QRegularExpression plain(QStringLiteral("\\A[A-Za-z0-9_./:=+-]+\\z"));
    if (word.contains(plain))
        return word;
    return QLatin1Char('\'') + QString(word).replace(QLatin1Char('\''), QStringLiteral("'\\''")) +
           QLatin1Char('\'');
}

QString airCommand(const AirPoint &point, const char *property, int value)
{
    const QString air = qEnvironmentVariable("STRANDEL_AIR", QStringLiteral("/run/strandel-air"));
    const QString file = air + QLatin1Char('/') + point.directory + QLatin1Char('/');
    return QStringLiteral("echo %1 >").arg(value) + quoted(file + QLatin1String(property));
}

/** Returns the command for "air-N-switch" and "air-N-track". */
QString airHand(const QString &element, double place, const Instrument &instrument)
{
    const int row = element.section(QLatin1Char('-'), 1, 1).toInt() - 1;
    if (row < 0 || row >= instrument.air.size())
        return {};
    const AirPoint &point = instrument.air.at(row);
    if (element.endsWith(track))
        return airCommand(point, "signal", int(std::lround(signalScale.valueAt(place))));
    return airCommand(point, "in_range", point.isInRange ? 0 : 1);
}

QString storageHand(const QString &device, bool isMounting, const Instrument &instrument)
{
    const QString files = QStringLiteral("storage/") + device;
    const auto holds = [&](const char *file) {
        return instrument.board.value(files + QLatin1String(file)).trimmed() == "1";
    };
    const char *action = nullptr;
    if (!isMounting)
        action = holds("/inserted") ? "remove" : "insert";
    else if (holds("/inserted"))
        action = holds("/mounted") ? "unmount" : "mount";
    return action ? say("storage", QLatin1String(action) + QLatin1Char(' ') + device) : QString();
}

/** Rounds to two significant digits, the precision of a drag. */
int roundedLight(double lux)
{
    const double unit = std::pow(10, std::max(0.0, std::floor(std::log10(lux)) - 1));
    return int(std::lround(lux / unit) * std::lround(unit));
}
} // namespace

QStringList handElements()
{
    QStringList elements{
        QStringLiteral("charger"),
        QStringLiteral("battery-track"),
        QStringLiteral("light-track"),
        QStringLiteral("temperature-SOM-track"),
        QStringLiteral("SD-hand"),
        QStringLiteral("temperature-ANALOG_CHAIN-track"),
        QStringLiteral("SD-mount"),
        QStringLiteral("USB-hand"),
        QStringLiteral("USB-mount"),
        QStringLiteral("SD"),
        QStringLiteral("USB"),
        QStringLiteral("cable"),
        QStringLiteral("dhcp"),
        QStringLiteral("wifi-dhcp"),
        QStringLiteral("daemon-start"),
        QStringLiteral("daemon-stop"),
        QStringLiteral("daemon-restart"),
        QStringLiteral("daemon-kill"),
        QStringLiteral("faults"),
    };
    for (int row = 1; row <= airRows; ++row)
        elements << QStringLiteral("air-%1-switch").arg(row)
                 << QStringLiteral("air-%1-track").arg(row);
    return elements;
}

bool isDragged(const QString &element)
{
    return element.endsWith(track);
}

QString commandFor(const QString &element, double place, const Instrument &instrument)
{
    if (element == QLatin1String("charger")) {
        const bool isIn =
            instrument.board.value(QStringLiteral("charger/present")).trimmed() == "1";
        return say("charger", isIn ? QStringLiteral("unplug") : QStringLiteral("plug"));
    }
    if (element == QLatin1String("battery-track"))
        return say("battery", QString::number(std::lround(place * 100)));
    if (element == QLatin1String("light-track"))
        return say("light", QString::number(roundedLight(lightScale.valueAt(place))));
    if (element.startsWith(QLatin1String("temperature-")))
        return say("temperature", QStringLiteral("%1 %2")
                                      .arg(element.section(QLatin1Char('-'), 1, 1))
                                      .arg(std::lround(temperatureScale.valueAt(place))));
    if (element == QLatin1String("SD") || element == QLatin1String("USB") ||
        element.endsWith(QLatin1String("-hand")) || element.endsWith(QLatin1String("-mount")))
        return storageHand(element.section(QLatin1Char('-'), 0, 0),
                           element.endsWith(QLatin1String("-mount")), instrument);
    if (element == QLatin1String("cable"))
        return say("ethernet",
                   instrument.isCableIn == 0 ? QStringLiteral("plug") : QStringLiteral("unplug"));
    if (element == QLatin1String("dhcp"))
        return say("ethernet",
                   instrument.isDhcpMute == 1 ? QStringLiteral("unmute") : QStringLiteral("mute"));
    if (element == QLatin1String("wifi-dhcp"))
        return say("wifi", instrument.isWifiDhcpMute == 1 ? QStringLiteral("unmute")
                                                          : QStringLiteral("mute"));
    if (element.startsWith(QLatin1String("daemon-")))
        return say("daemon", element.section(QLatin1Char('-'), 1, 1));
    if (element.startsWith(QLatin1String("air-")))
        return airHand(element, place, instrument);
    return {};
}

QString shellCommand(const QStringList &words)
{
    QStringList parts;
    for (const QString &word : words)
        parts << quoted(word);
    return parts.join(QLatin1Char(' '));
}

QString asTyped(const QString &command)
{
    static const QRegularExpression forShell(QStringLiteral("[<>*]"));
    static const QRegularExpression inQuotes(QStringLiteral("'[^']*'"));
    const QString instrument = qEnvironmentVariable("INSTRUMENT_COMMAND", QStringLiteral("./run"));
    if (!QString(command).remove(inQuotes).contains(forShell))
        return QStringLiteral("%1 -- %2").arg(instrument, command);
    return QStringLiteral("%1 -- sh -c %2").arg(instrument, quoted(command));
}

QStringList faultOperations()
{
    static const char *const operations[] = {
        "KyAls.convLuxInExponentMantissaByte",
        "KyAls.getinterruptHandler",
        "KyAls.init",
        "KyAls.interruptEnable",
        "KyAls.interruptRead",
        "KyAls.readLux",
        "KyAls.setThresholds",
        "KyAls.setThresholdsTimer",
        "KyBacklight.enableBacklight",
        "KyBacklight.getBrightness",
        "KyBacklight.setBrightness",
        "KyBatmonitor.getBatteryInfo",
        "KyBatmonitor.getCmeterType",
        "KyBatmonitor.prepareForShutdown",
        "KyBatmonitor.update",
        "KyBoardRev.getRevision",
        "KyBoardRev.setBrand",
        "KyBoardRev.setModel",
        "KyBoardRev.setSoMRevision",
        "KyEeprom.readEeprom",
        "KyEeprom.setWriteEnable",
        "KyEeprom.writeEeprom",
        "KyFaccess.isDeviceInserted",
        "KyFaccess.isMounted",
        "KyFaccess.unmountDevice",
        "KyLeds.getLedState",
        "KyLeds.setLedState",
        "KyPowerman.setAckWatchdog",
        "KyPowerman.wifiHardReset",
        "KyPowerman.wifiPower",
        "KyPowerman.wifiSoftReset",
        "KySocManager.getSoCRegister",
        "KySocManager.initSPI",
        "KyTemperature.getTemperature",
    };
    QStringList names;
    for (const char *operation : operations)
        names << QString::fromLatin1(operation);
    return names;
}

namespace
{
QString faultFile(const QString &operation)
{
    return QString::fromStdString(board::pathOf("faults/" + operation.toStdString()));
}
} // namespace

QString faultCommand(const QString &operation, const QString &words)
{
    return QStringLiteral("echo %1 >%2").arg(words, faultFile(operation));
}

QString healCommand(const QString &operation)
{
    return QStringLiteral("rm %1").arg(faultFile(operation));
}

QString healAllCommand()
{
    return QStringLiteral("rm -f %1").arg(faultFile(QStringLiteral("*")));
}
