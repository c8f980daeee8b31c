#include "look.h"

#include "crc16.h"
#include "ledname.h"
#include "thresholdcode.h"

#include <algorithm>
#include <cmath>

const Scale temperatureScale = {-40, 120, false};
const Scale lightScale = {1, 100000, true};
const Scale signalScale = {-100, -30, false};

double Scale::placeOf(double value) const
{
    if (isLogarithmic)
        return std::clamp(std::log(std::max(value, lowest) / lowest) / std::log(highest / lowest),
                          0.0, 1.0);
    return std::clamp((value - lowest) / (highest - lowest), 0.0, 1.0);
}

double Scale::valueAt(double place) const
{
    const double limited = std::clamp(place, 0.0, 1.0);
    if (isLogarithmic)
        return lowest * std::pow(highest / lowest, limited);
    return lowest + limited * (highest - lowest);
}

double ledOpacity(const QByteArray &state, qint64 milliseconds)
{
    if (state == "ON")
        return 1;
    if (state == "BLINK_1HZ")
        return milliseconds % 1000 < 500 ? 1 : 0;
    if (state == "BLINK_3HZ")
        return milliseconds * 3 % 1000 < 500 ? 1 : 0;
    if (state == "OFF")
        return 0;
    // An LED whose state is UNKNOWN or invalid is half lit.
    return 0.35;
}

namespace
{
/** The daemon's network interfaces, and their names on the screen. */
const struct {
    const char *name;
    const char *shown;
} interfaces[] = {{"Ethernet", "Ethernet"}, {"WIFI", "Wi-Fi"}, {"WIFIAP", "access point"}};

const QString unknown = QStringLiteral("?");

QString cut(const QString &text, int longest)
{
    return text.size() > longest ? text.left(longest - 1) + QStringLiteral("\u2026") : text;
}

QString named(const char *before, const QString &value)
{
    return QString::fromLatin1(before) + QLatin1Char(' ') + value;
}

/** Makes a look from the state of the instrument. */
class Painter
{
public:
    Painter(const Instrument &instrument, qint64 milliseconds)
        : m_instrument(instrument), m_milliseconds(milliseconds)
    {
    }

    Look paint()
    {
        paintLeds();
        paintPower();
        paintScreen();
        paintTemperatures();
        paintLight();
        paintBoard();
        paintStorage(QStringLiteral("SD"));
        paintStorage(QStringLiteral("USB"));
        paintDaemon();
        paintLinks();
        paintAir();
        write("command", m_instrument.command.isEmpty()
                             ? QStringLiteral("press or drag something: here is the command for it")
                             : cut(m_instrument.command, longestCommand));
        write("command-result", cut(m_instrument.complaint, 60));
        return m_look;
    }

private:
    QByteArray raw(const QString &file) const { return m_instrument.board.value(file); }

    /** Returns the text in @p file; a question mark if the text is empty or too long to draw. */
    QString value(const char *file) const
    {
        const QString text = QString::fromUtf8(raw(QString::fromLatin1(file)).trimmed());
        return text.isEmpty() || text.size() > 12 ? unknown : text;
    }

    /** Returns the number in @p file; @p otherwise if the file has no number. */
    double number(const QString &file, double otherwise, bool *isGood = nullptr) const
    {
        bool good = false;
        const double result = raw(file).trimmed().toDouble(&good);
        if (isGood)
            *isGood = good;
        return good ? result : otherwise;
    }
    double number(const char *file, double otherwise, bool *isGood = nullptr) const
    {
        return number(QString::fromLatin1(file), otherwise, isGood);
    }
    bool flag(const QString &file) const { return raw(file).trimmed() == "1"; }
    bool flag(const char *file) const { return flag(QString::fromLatin1(file)); }

    void show(const QString &id, bool isSeen) { m_look.opacities[id] = isSeen ? 1 : 0; }
    void show(const char *id, bool isSeen) { show(QString::fromLatin1(id), isSeen); }
    void write(const QString &id, const QString &text) { m_look.texts[id] = text; }
    void write(const char *id, const QString &text) { write(QString::fromLatin1(id), text); }
    void reach(const QString &id, double from, double to) { m_look.spans[id] = {from, to}; }

    void paintLeds()
    {
        for (const board::LedName &led : board::ledNames) {
            const QString name = QString::fromLatin1(led.name);
            m_look.opacities[name] =
                ledOpacity(raw(QStringLiteral("leds/") + name).trimmed(), m_milliseconds);
        }
    }

    void paintPower()
    {
        bool isKnown = false;
        const double measured = number("battery/charge", 0, &isKnown);
        const double charge = std::abs(measured);
        const bool hasCharger = flag("charger/present");
        const QString percent = isKnown ? QStringLiteral("%1 %").arg(charge) : unknown;
        write("battery-charge", percent);
        reach(QStringLiteral("battery-level"), 0, std::min(charge / 100, 1.0));
        m_look.opacities[QStringLiteral("battery-low")] = isKnown && charge <= 20 ? 1 : 0;
        reach(QStringLiteral("battery-low"), 0, std::min(charge / 100, 1.0));
        write("battery-voltage", value("battery/voltage") + QStringLiteral(" mV"));
        write("battery-direction", measured < 0 ? QStringLiteral("charging")
                                   : hasCharger ? QStringLiteral("charger in")
                                                : QStringLiteral("on battery"));
        write("battery-meter",
              named("meter type", value("battery/type")) + named(",  flag", value("battery/flag")));
        write("battery-told",
              named("told of charger", value("battery/charger_told")) +
                  named(",  shutdowns prepared", value("battery/shutdowns_prepared")));
        show("charger-in", hasCharger);
        show("charger-out", !hasCharger);
        write("charger-text",
              hasCharger ? QStringLiteral("Pull the charger") : QStringLiteral("Plug charger in"));
        write("screen-battery", percent);
    }

    void paintScreen()
    {
        bool isKnown = false;
        const double brightness = std::clamp(number("backlight/brightness", 0, &isKnown), 0., 100.);
        const bool isOn = flag("backlight/enabled");
        // The screen stays recognisable even with the darkest backlight.
        m_look.opacities[QStringLiteral("screen-shade")] =
            isOn && isKnown ? 0.72 * (1 - brightness / 100) : 0.94;
        QString text = isKnown ? QStringLiteral("backlight %1 %").arg(brightness)
                               : QStringLiteral("backlight ?");
        write("backlight-text", isOn ? text : text + QStringLiteral(", switched off"));
        QStringList networks;
        for (const auto &interface : interfaces) {
            if (m_instrument.links.value(QString::fromLatin1(interface.name)).state ==
                QLatin1String("online"))
                networks << QString::fromLatin1(interface.shown);
        }
        write("screen-network", networks.join(QStringLiteral(", ")));
        write("screen-profile", m_instrument.profile);
        const bool hasCard = flag("storage/SD/mounted");
        const bool hasKey = flag("storage/USB/mounted");
        write("screen-storage", hasCard && hasKey ? QStringLiteral("SD card, USB key")
                                : hasCard         ? QStringLiteral("SD card")
                                : hasKey          ? QStringLiteral("USB key")
                                                  : QString());
    }

    void paintTemperatures()
    {
        for (const char *name : {"SOM", "ANALOG_CHAIN"}) {
            const QString id = QStringLiteral("temperature-") + QLatin1String(name);
            bool isKnown = false;
            const double degrees =
                number(QStringLiteral("temperature/") + QLatin1String(name), 0, &isKnown);
            write(id + QStringLiteral("-text"),
                  isKnown ? QStringLiteral("%1 \u00b0C").arg(degrees) : unknown);
            reach(id + QStringLiteral("-level"), 0,
                  isKnown ? temperatureScale.placeOf(degrees) : 0);
        }
    }

    void paintLight()
    {
        bool isKnown = false;
        const double lux = number("als/lux", 0, &isKnown);
        write("light-text", isKnown ? QStringLiteral("%1 lux").arg(lux, 0, 'g', 7) : unknown);
        reach(QStringLiteral("light-level"), 0, isKnown ? lightScale.placeOf(lux) : 0);
        m_look.opacities[QStringLiteral("light-glow")] =
            isKnown ? 0.15 + 0.85 * lightScale.placeOf(lux) : 0;
        bool isHighKnown = false;
        bool isLowKnown = false;
        const double high = number("als/threshold_high", 255, &isHighKnown);
        const double low = number("als/threshold_low", 0, &isLowKnown);
        write("light-band-text", named("band of codes", value("als/threshold_low")) +
                                     named(" to", value("als/threshold_high")));
        reach(QStringLiteral("light-band"), placeOfCode(low),
              high < 255 ? placeOfCode(high + 1) : 1);
        m_look.opacities[QStringLiteral("light-band")] = isHighKnown && isLowKnown ? 1 : 0;
        const QString enabled = value("als/interrupt_enabled");
        write("light-interrupt", flag("als/interrupt") ? QStringLiteral("interrupt pending")
                                 : enabled == QLatin1String("1") ? QStringLiteral("interrupt on")
                                 : enabled == QLatin1String("0") ? QStringLiteral("interrupt off")
                                                                 : QStringLiteral("interrupt ?"));
        bool isTimeKnown = false;
        const double tenths = number("als/timer", 0, &isTimeKnown);
        write("light-timer", isTimeKnown
                                 ? QStringLiteral("persistence %1 s").arg(tenths / 10, 0, 'f', 1)
                                 : QStringLiteral("persistence ?"));
    }

    static double placeOfCode(double code)
    {
        const auto limited = static_cast<unsigned char>(std::clamp(code, 0.0, 255.0));
        return lightScale.placeOf(static_cast<double>(board::leastLux(limited)));
    }

    void paintBoard()
    {
        const QString supply = value("powerman/wifi_supply");
        show("module-on", supply == QLatin1String("1"));
        write("module-text", supply == QLatin1String("1")   ? QStringLiteral("has power")
                             : supply == QLatin1String("0") ? QStringLiteral("without power")
                                                            : unknown);
        write("module-resets",
              QStringLiteral("resets: %1 soft, %2 hard")
                  .arg(value("powerman/wifi_soft_resets"), value("powerman/wifi_hard_resets")));
        paintWatchdog();
        write("eeprom-text",
              QStringLiteral("instrument %1, measure %2")
                  .arg(validity("eeprom/instrument", 74), validity("eeprom/measure", 1196)));
        const QString writable = value("eeprom/write_enabled");
        write("eeprom-protection",
              writable == QLatin1String("0")   ? QStringLiteral("write-protected")
              : writable == QLatin1String("1") ? QStringLiteral("writable")
                                               : QStringLiteral("protection ?"));
        write("revision-text", QStringLiteral("SOM %1, HPS %2, FPGA %3, card %4")
                                   .arg(value("revision/SOM"), value("revision/HPS"),
                                        fpgaRevision(), value("revision/MESURE_CARD")));
        QStringList registers;
        QStringList faults;
        for (auto file = m_instrument.board.constBegin(); file != m_instrument.board.constEnd();
             ++file) {
            if (file.key().startsWith(QLatin1String("soc/")))
                registers << file.key().mid(6) + QLatin1Char('=') +
                                 QString::fromUtf8(file.value().trimmed());
            if (file.key().startsWith(QLatin1String("faults/")))
                faults << file.key().mid(7);
        }
        write("register-text", cut(registers.join(QLatin1Char(' ')), 32));
        show("fault-on", !faults.isEmpty());
        const QString held = QString::fromUtf8(raw(QStringLiteral("held")).trimmed());
        write("fault-text", !held.isEmpty()      ? named("hangs in", held)
                            : faults.isEmpty()   ? QStringLiteral("no faults")
                            : faults.size() == 1 ? named("fault:", faults.first())
                                                 : QStringLiteral("%1 faults").arg(faults.size()));
    }

    /** The board does not report its watchdog's timeout; assume half a minute. */
    void paintWatchdog()
    {
        const qint64 seconds = m_instrument.fedBefore / 1000;
        const bool isFed = m_instrument.fedBefore >= 0 && seconds < 30;
        show("watchdog-fed", isFed);
        const QString feeds = value("watchdog/feeds");
        const QString times = feeds == QLatin1String("0")
                                  ? QStringLiteral("never fed")
                                  : QStringLiteral("fed %1 times").arg(feeds);
        write("watchdog-text", times + (isFed ? QString() : QStringLiteral(", starving")));
        write("watchdog-acknowledgements", QStringLiteral("acknowledged %1 times")
                                               .arg(value("powerman/watchdog_acknowledgements")));
    }

    /**
     * Returns "ok" if the record of @p size bytes matches the checksum at its beginning, otherwise
     * "spoilt"; if @p file is shorter than the record, returns the text for an unknown value.
     */
    QString validity(const char *file, int size) const
    {
        const QByteArray record = raw(QString::fromLatin1(file)).left(size);
        if (record.size() < size)
            return unknown;
        const auto high = static_cast<unsigned char>(record.at(0));
        const auto low = static_cast<unsigned char>(record.at(1));
        return crc16(record.mid(2)) == high * 256 + low ? QStringLiteral("ok")
                                                        : QStringLiteral("spoilt");
    }

    QString fpgaRevision() const
    {
        bool isKnown = false;
        const uint revision = raw(QStringLiteral("revision/FPGA")).trimmed().toUInt(&isKnown, 0);
        return isKnown ? QStringLiteral("%1.%2").arg(revision >> 16).arg(revision & 0xffff)
                       : unknown;
    }

    void paintStorage(const QString &device)
    {
        const QString files = QStringLiteral("storage/") + device;
        const bool isInserted = flag(files + QStringLiteral("/inserted"));
        const bool isMounted = flag(files + QStringLiteral("/mounted"));
        show(device + QStringLiteral("-in"), isInserted);
        show(device + QStringLiteral("-out"), !isInserted);
        show(device + QStringLiteral("-mounted"), isMounted);
        write(device + QStringLiteral("-text"), isMounted    ? QStringLiteral("mounted")
                                                : isInserted ? QStringLiteral("inserted")
                                                             : QStringLiteral("empty"));
        write(device + QStringLiteral("-hand-text"),
              isInserted ? QStringLiteral("Pull") : QStringLiteral("Insert"));
        write(device + QStringLiteral("-mount-text"),
              isMounted ? QStringLiteral("Unmount") : QStringLiteral("Mount"));
        m_look.opacities[device + QStringLiteral("-mount")] = isInserted ? 1 : 0.4;
    }

    void paintDaemon()
    {
        show("daemon-there", m_instrument.isDaemonThere);
        write("daemon-text", m_instrument.isDaemonThere ? QStringLiteral("on the bus")
                             : m_instrument.isBusThere  ? QStringLiteral("away")
                                                        : QStringLiteral("the bus is away"));
        m_look.opacities[QStringLiteral("daemon-start")] = m_instrument.isDaemonThere ? 0.4 : 1;
        for (const char *command : {"daemon-stop", "daemon-restart", "daemon-kill"})
            m_look.opacities[QLatin1String(command)] = m_instrument.isDaemonThere ? 1 : 0.4;
        write("speed-text",
              m_instrument.speed == 1
                  ? QString()
                  : QStringLiteral("time passes %1 times faster").arg(m_instrument.speed));
        write("daemon-profile",
              m_instrument.profile.isEmpty() ? QString()
              : m_instrument.isChangingProfile
                  ? named("profile", m_instrument.profile) + QStringLiteral(" \u2192 \u2026")
                  : named("profile", m_instrument.profile));
        write("battery-status", m_instrument.batteryStatus.isEmpty() ? QStringLiteral("nothing")
                                                                     : m_instrument.batteryStatus);
    }

    void paintLinks()
    {
        for (const auto &interface : interfaces) {
            const QString id = QString::fromLatin1(interface.name);
            const Link link = m_instrument.links.value(id);
            write(id + QStringLiteral("-state"),
                  link.state.isEmpty() ? QStringLiteral("not known") : link.state);
            write(id + QStringLiteral("-trail"),
                  link.trail.size() < 2 ? QString()
                                        : QStringList(link.trail.mid(link.trail.size() - 4))
                                              .join(QStringLiteral(" \u2192 ")));
            write(id + QStringLiteral("-address"),
                  link.address.isEmpty() ? QStringLiteral("no address") : link.address);
        }
        const int strength = m_instrument.strength;
        for (int bar = 1; bar <= 4; ++bar)
            show(QStringLiteral("strength-%1").arg(bar), strength >= 25 * bar - 20);
        write("strength-text", strength < 0 ? QString() : QStringLiteral("%1 %").arg(strength));
        // If the state of the cable is unknown (-1), assume that the cable is plugged in.
        show("cable-in", m_instrument.isCableIn != 0);
        show("cable-out", m_instrument.isCableIn == 0);
        write("cable-text", m_instrument.isCableIn == 0 ? QStringLiteral("Plug the cable in")
                                                        : QStringLiteral("Pull the cable"));
        write("dhcp-text", m_instrument.isDhcpMute == 1 ? QStringLiteral("Unmute DHCP server")
                                                        : QStringLiteral("Mute DHCP server"));
        write("wifi-dhcp-text", m_instrument.isWifiDhcpMute == 1
                                    ? QStringLiteral("Unmute DHCP server")
                                    : QStringLiteral("Mute DHCP server"));
    }

    void paintAir()
    {
        for (int row = 0; row < airRows; ++row) {
            const QString id = QStringLiteral("air-%1").arg(row + 1);
            show(id, row < m_instrument.air.size());
            if (row >= m_instrument.air.size())
                continue;
            const AirPoint &point = m_instrument.air.at(row);
            QString name = point.ssid;
            if (point.directory.compare(point.ssid, Qt::CaseInsensitive) != 0)
                name += QStringLiteral(" (%1)").arg(point.directory);
            if (point.isHidden)
                name += QStringLiteral(", hidden");
            write(id + QStringLiteral("-name"), cut(name, 20));
            write(id + QStringLiteral("-signal"), QStringLiteral("%1 dBm").arg(point.signal));
            reach(id + QStringLiteral("-level"), 0, signalScale.placeOf(point.signal));
            show(id + QStringLiteral("-on"), point.isInRange);
            show(id + QStringLiteral("-off"), !point.isInRange);
            m_look.opacities[id + QStringLiteral("-joined")] = isJoined(point) ? 1 : 0;
        }
        const int more = m_instrument.air.size() - airRows;
        write("air-more", more > 0 ? QStringLiteral("and %1 more").arg(more) : QString());
    }

    /** The path of a service of ConnMan contains the network's name in hexadecimal. */
    bool isJoined(const AirPoint &point) const
    {
        return m_instrument.joinedService.contains(
            QLatin1Char('_') + QString::fromLatin1(point.ssid.toUtf8().toHex()) + QLatin1Char('_'));
    }

    const Instrument &m_instrument;
    const qint64 m_milliseconds;
    Look m_look;
};
} // namespace

Look lookOf(const Instrument &instrument, qint64 milliseconds)
{
    return Painter(instrument, milliseconds).paint();
}
