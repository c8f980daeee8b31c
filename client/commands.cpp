#include "commands.h"

#include "bus.h"
#include "enumnames.h"
#include "introspection/signals.h"
#include "ipv4rules.h"
#include "leds.h"
#include "profiles.h"
#include "textrules.h"

#include <iterator>
#include <limits>

namespace
{
const QString config = QString::fromLatin1(configPath);
const QString com = QString::fromLatin1(comPath);
const QString device = QString::fromLatin1(devicePath);

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

Argument argument(const char *name, Kind kind, const char *help)
{
    return {text(name), kind, text(help), {}, 0, 0, {}, false, nullptr, {}, nullptr};
}

/**
 * Returns an argument that is valid if @p accepts returns true. @p wanted describes valid texts.
 */
Argument ruled(const char *name, bool (*accepts)(const QString &), const char *wanted,
               const char *help)
{
    Argument made = argument(name, Kind::Text, help);
    made.accepts = accepts;
    made.wanted = text(wanted);
    return made;
}

/** Returns an argument of at most @p maximum bytes, or of exactly @p maximum numbers. */
Argument limited(const char *name, Kind kind, qlonglong maximum, const char *help)
{
    Argument made = argument(name, kind, help);
    made.maximum = maximum;
    return made;
}

Argument choice(const char *name, const QStringList &choices, const char *help)
{
    Argument made = argument(name, Kind::Choice, help);
    made.choices = choices;
    return made;
}

Argument integer(const char *name, qlonglong minimum, qlonglong maximum, const char *help)
{
    Argument made = argument(name, Kind::Integer, help);
    made.minimum = minimum;
    made.maximum = maximum;
    return made;
}

Argument settings(const QVector<Argument> &keys, const char *help)
{
    Argument made = argument("KEY=VALUE...", Kind::Settings, help);
    made.keys = keys;
    return made;
}

Argument required(Argument key)
{
    key.required = true;
    return key;
}

constexpr qlonglong int32Minimum = std::numeric_limits<qint32>::min();
constexpr qlonglong int32Maximum = std::numeric_limits<qint32>::max();
constexpr qlonglong uint32Maximum = std::numeric_limits<quint32>::max();

constexpr char fileName[] = "the name of a file";

Argument ipv4Settings()
{
    const char address[] = "an IPv4 address of a host, as in 192.168.1.20";
    const char server[] = "an IPv4 or IPv6 address";
    Argument made = settings(
        {choice("Method", {text("dhcp"), text("manual"), text("off")}, "source of the address"),
         ruled("Address", isHostAddress, address, "IPv4 address, needed with Method=manual"),
         ruled("Netmask", isNetmask, "a netmask, as in 255.255.255.0", "IPv4 netmask"),
         ruled("Gateway", isHostAddress, address, "IPv4 address of the gateway, in that network"),
         ruled("DNS1", isServerAddress, server, "first name server, IPv4 or IPv6"),
         ruled("DNS2", isServerAddress, server, "second name server, IPv4 or IPv6")},
        "settings for the next connection");
    made.disagreement = ipv4Disagreement;
    return made;
}

Argument accessPointSettings()
{
    return settings(
        {required(integer("Channel", 1, 14, "radio channel")),
         required(ruled("SSID", isNetworkName, "1 to 32 bytes without control characters",
                        "name of the network, 1 to 32 bytes")),
         required(choice("Security", {text("WPA2"), text("open")}, "encryption")),
         required(ruled("IP", isHostAddress, "an IPv4 address of a host, as in 192.168.1.20",
                        "IPv4 address of the access point"))},
        "the access point");
}

QVector<Argument> instrumentKeys()
{
    return {required(integer("Subsidiary", 0, 255, "")),
            required(integer("Fabrication", 0, 255, "")),
            required(integer("Brand", 0, 255, "")),
            required(integer("Type", 0, 255, "")),
            required(argument("Model", Kind::Hex16, "up to four hexadecimal digits, as in 8345")),
            required(limited("SerialNumber", Kind::Bytes, 8, "")),
            required(limited("WarrantyNumber", Kind::Bytes, 9, "")),
            required(integer("TroubleshootingTag", 0, 255, "")),
            required(integer("RelaunchTag", 0, 255, "")),
            required(integer("FirstPassTag", 0, 255, "")),
            required(limited("IrdInstrumentPassword", Kind::SecretBytes, 30, "")),
            required(limited("IrdSessionPassword", Kind::SecretBytes, 16, ""))};
}

QVector<Argument> measureKeys()
{
    // The dates have no defined unit: any 32-bit number is valid.
    return {required(integer("AdjustementSite", 0, 65535, "")),
            required(integer("AdjustementDate", 0, uint32Maximum, "stored as it is")),
            required(integer("NextAdjustementDate", 0, uint32Maximum, "stored as it is")),
            required(limited("AdjustementCoefficients", Kind::Numbers, 296, ""))};
}

QVector<Command> makeCommands()
{
    const QStringList users(std::begin(profiles::users), std::end(profiles::users));
    const QStringList storages = {text("SD"), text("USB")};
    const QStringList sensors = {text("SOM"), text("ANALOG_CHAIN")};
    const QStringList leds = enumNames(registeredEnum(Leds::staticMetaObject, "Led"));
    const QStringList ledStates = enumNames(registeredEnum(Leds::staticMetaObject, "State"));
    const Outcome none = {};
    const QString ethernet = text("Ethernet");
    const QString wifi = text("WIFI");
    const QString accessPoint = text("WIFIAP");
    const Outcome online = {text("online"), text("failure"), 75};
    const Outcome idle = {text("idle"), QString(), 30};
    const Outcome networks = {QString(), text("failure"), 30};

    QVector<Command> made;
    const auto method = [&made, &none](const char *words, const QString &path,
                                       const QString &interface, const char *name,
                                       const QVector<Argument> &arguments,
                                       const char *help) -> Command & {
        made.append({text(words), text(help), path, interface, text(name), {}, arguments, none});
        return made.last();
    };
    const auto operation = [&made](const char *words, const QString &interface, const char *name,
                                   const QVector<Argument> &arguments, const Outcome &outcome,
                                   const char *help) -> Command & {
        made.append({text(words), text(help), com, interface, text(name), {}, arguments, outcome});
        return made.last();
    };
    const auto fields = [&method](const char *words, const QString &path, const QString &interface,
                                  const char *name, const char *help) -> Command & {
        Command &command = method(words, path, interface, name, {}, help);
        command.hasFields = true;
        return command;
    };
    const auto tcpIp = [&method, &fields](const QByteArray &group, const QString &interface) {
        fields(group + " ipv4", com, interface, "getIPv4", "IPv4 settings in use").nothing =
            text("not connected");
        method(group + " set-ipv4", com, interface, "setIPv4", {ipv4Settings()},
               "set the IPv4 settings for the next connection");
        fields(group + " hardware", com, interface, "getHardwareInfos",
               "name, hardware address and MTU of the interface")
            .nothing = text("there is no such network interface");
    };

    method("user get", config, text("Users"), "getUser", {}, "name of the active profile");
    method("user set", config, text("Users"), "setUser",
           {choice("USER", users, "profile to activate")}, "activate a profile");
    method("user reset", config, text("Users"), "factoryReset",
           {choice("USER", users, "profile to reset")},
           "replace a profile by a copy of the factory default")
        .question = text("replace all files of the profile by the factory default");

    made.append({text("battery status"),
                 text("charger and charge"),
                 device,
                 text("Alimentation"),
                 {},
                 text("batteryStatus"),
                 {},
                 none});
    method("battery voltage", device, text("Alimentation"), "getBatteryVoltage", {},
           "battery voltage of the last measurement")
        .unit = text("mV");

    fields("led list", device, text("LED"), "getLEDStatus", "state of every LED").nothing =
        text("no LED answers");
    method("led set", device, text("LED"), "setLEDStatus",
           {choice("LED", leds, "LED to set"), choice("STATE", ledStates, "state to show")},
           "set the state of an LED");
    method("led shutdown", device, text("LED"), "prepareForShutdown", {},
           "show the shutdown pattern on the power button");

    Command &temperatures = fields("temperature list", device, text("Temperature"),
                                   "getTemperatures", "temperature of every sensor");
    temperatures.nothing = text("no sensor answers");
    temperatures.unit = text("\u00b0C");
    method("temperature threshold", device, text("Temperature"), "setTemperatureThreshold",
           {choice("SENSOR", sensors, "sensor"),
            integer("VALUE", int32Minimum, int32Maximum, "lowest temperature that is announced")},
           "set the threshold of a sensor");
    method("temperature interval", device, text("Temperature"), "setInterval",
           {integer("MILLISECONDS", 1000, int32Maximum, "period of the check")},
           "set the period of the temperature check");
    method("temperature check", device, text("Temperature"), "periodicTemperatureCheck", {},
           "check the thresholds now");

    method("storage mounted", device, text("Storage"), "isMounted",
           {choice("DEVICE", storages, "storage device")}, "whether a device is mounted");
    method("storage unmount", device, text("Storage"), "umount",
           {choice("DEVICE", storages, "storage device")}, "unmount a device");

    method("backlight get", device, text("Backlight"), "getBacklight", {}, "backlight in percent")
        .unit = text("%");
    method("backlight set", device, text("Backlight"), "setBacklight",
           {integer("PERCENT", 0, 100, "brightness")}, "set the backlight in percent");
    method("backlight enable", device, text("Backlight"), "enableBacklight",
           {argument("on|off", Kind::Switch, "state")}, "switch the backlight on or off");
    method("backlight step", device, text("Backlight"), "getBacklightStep", {},
           "step of the current percentage");
    method("backlight set-step", device, text("Backlight"), "setBacklightStep",
           {argument("on|off", Kind::Switch, "automatic mode"), integer("STEP", 0, 13, "step")},
           "set the automatic mode and, without it, the step");
    method("brightness get", device, text("Brightness"), "getBrightness", {},
           "ambient light in lux")
        .unit = text("lux");

    fields("eeprom instrument", device, text("Version"), "getEepromInstrument",
           "instrument record, its passwords hidden")
        .secrets = QStringList{text("IrdInstrumentPassword"), text("IrdSessionPassword")};
    method("eeprom set-instrument", device, text("Version"), "setEepromInstrument",
           {settings(instrumentKeys(), "the whole record")}, "write the instrument record")
        .question = text("overwrite the instrument record in the EEPROM");
    fields("eeprom measure", device, text("Version"), "getEepromMesure", "measure-card record");
    method("eeprom set-measure", device, text("Version"), "setEepromMesure",
           {settings(measureKeys(), "the whole record")}, "write the measure-card record")
        .question = text("overwrite the measure-card record, with all adjustment coefficients, in "
                         "the EEPROM");
    method("eeprom invalidate", device, text("Version"), "invalidateEepromsContent", {},
           "make the CRCs of both records wrong")
        .question = text("make both records in the EEPROMs invalid");
    fields("version revisions", device, text("Version"), "getRevision", "hardware revisions")
        .nothing = text("no revision can be read");
    fields("version software", device, text("Version"), "getSoftwareVersions", "software versions");

    method("watchdog keep-alive", device, text("Watchdog"), "keepAlive", {}, "feed the watchdog");
    method("module power", device, text("Network"), "redpinePower",
           {argument("on|off", Kind::Switch, "state")}, "switch the Wi-Fi module's supply");
    method("module soft-reset", device, text("Network"), "redpineSoftReset", {},
           "reset the Wi-Fi module by software");
    method("module hard-reset", device, text("Network"), "redpineHardReset", {},
           "reset the Wi-Fi module by its reset line");
    method("shutdown", device, text("MGR"), "prepareForShutdown", {},
           "prepare the LEDs and the battery monitor for power-off");

    operation("ethernet connect", ethernet, "connect", {}, online, "bring the wired interface up");
    const QString isOff = text("Cannot set property Powered: Already disabled");
    operation("ethernet disconnect", ethernet, "disconnect", {}, idle,
              "take the wired interface down")
        .done = isOff;
    tcpIp("ethernet", ethernet);

    operation("wifi connect", wifi, "connect",
              {ruled("NETWORK", isListedNetworkName,
                     "1 to 32 characters without control characters", "name of the network")},
              online, "join a network; ask for its passphrase");
    operation("wifi disconnect", wifi, "disconnect", {}, idle, "leave and forget the network")
        .done = isOff;
    operation("wifi scan", wifi, "scan", {}, networks, "list the networks in reach");
    Command &strength =
        fields("wifi strength", com, wifi, "getStrength", "strength of the joined network");
    strength.unit = text("%");
    strength.nothing = text("no network is joined");
    strength.needsAddress = true;
    tcpIp("wifi", wifi);

    operation("ap start", accessPoint, "connect", {accessPointSettings()}, online,
              "start the access point; with WPA2, ask for the password");
    operation("ap stop", accessPoint, "disconnect", {}, idle, "stop the access point").done =
        text("Cannot disconnect WAP, already disconnected");
    method("ap wps", com, accessPoint, "wpsEnable", {}, "accepted, without effect");
    tcpIp("ap", accessPoint);
    return made;
}

Command ownCommand(const char *words, const QVector<Argument> &arguments, const char *help)
{
    return {text(words), text(help), {}, {}, {}, {}, arguments, {}};
}

Command monitorCommand()
{
    Argument signal = choice("[SIGNAL...]", signalNames(), "signals to print");
    signal.kind = Kind::Choices;
    return ownCommand("monitor", {signal}, "print each signal on a line, until interrupted");
}

Command restoreCommand()
{
    Command made =
        ownCommand("eeprom restore",
                   {ruled("FILE", isFileName, fileName, "a file that eeprom dump has written")},
                   "write both records from a copy");
    made.question = text("overwrite both records in the EEPROMs");
    return made;
}

Command statusCommand()
{
    Command made = ownCommand("status", {}, "the whole instrument on one screen");
    made.hasFields = true;
    return made;
}
} // namespace

const QStringList &signalNames()
{
    static const QStringList names = {INTROSPECTION_SIGNALS};
    return names;
}

const QVector<Command> &ownCommands()
{
    static const QVector<Command> table = {
        statusCommand(),
        ownCommand("wifi forget",
                   {ruled("NETWORK", isListedNetworkName,
                          "1 to 32 characters without control characters", "name of the network")},
                   "forget a network in reach, and its passphrase"),
        ownCommand("eeprom dump",
                   {ruled("FILE", isFileName, fileName, "a new file, for its owner alone")},
                   "copy both records, with the passwords, into a file"),
        restoreCommand(),
        ownCommand("watch", {}, "the whole instrument, live, on one screen of a terminal"),
        monitorCommand(),
        ownCommand("help", {argument("[COMMAND]", Kind::Text, "a command, or its first words")},
                   "list all commands, or the arguments of a command"),
    };
    return table;
}

const QVector<Option> &options()
{
    const QString none;
    static const QVector<Option> table = {
        {text("--json"), none, none, text("print values for machines"), Scope::Every},
        {text("--field"), none, text("NAME"),
         text("print one value of an answer, without its unit"), Scope::Fields},
        {text("--unit"),
         none,
         text("UNIT"),
         text("unit of the voltage, mV or V"),
         Scope::Voltage,
         {text("mV"), text("V")}},
        {text("--timeout"), none, text("SECONDS"),
         text("how long to wait for an answer, or for the outcome of a network operation"),
         Scope::Every},
        {text("--count"), none, text("SIGNALS"), text("end after this number of signals"),
         Scope::Monitor},
        {text("--no-wait"), none, none,
         text("start a network operation without waiting for its outcome"), Scope::Operation},
        {text("--open"), none, none, text("the network needs no passphrase"), Scope::WifiConnect},
        {text("--user"), none, text("NAME"), text("user name for an enterprise network"),
         Scope::WifiConnect},
        {text("--yes"), none, none, text("do not ask before something is destroyed"),
         Scope::Destructive},
        {text("--show-secrets"), none, none, text("show passwords, too"), Scope::Secret},
        {text("--address"), none, text("ADDRESS"),
         text("D-Bus address of the bus, instead of the system bus"), Scope::Every},
        {text("--host"), none, text("HOST"),
         text("system bus of another machine, through ssh: HOST or USER@HOST"), Scope::Every},
        {text("--verbose"), none, none, text("add the D-Bus error to error messages"),
         Scope::Every},
        {text("--help"), text("h"), none, text("print help and end"), Scope::Every},
        {text("--version"), none, none, text("print the version and end"), Scope::Every},
    };
    return table;
}

const QVector<StatusMeaning> &exitStatuses()
{
    static const QVector<StatusMeaning> table = {
        {Success, text("done")},
        {DaemonError, text("the daemon replied with an error")},
        {BadUsage,
         text("the command line, or a file that it names, was wrong, and nothing was sent")},
        {DaemonAway, text("the daemon does not run, or the bus cannot be reached")},
        {InterfaceAbsent, text("this model of the instrument has no such interface")},
        {OutcomeFailed, text("the operation failed")},
        {OutcomeMissing, text("the operation did not end in time")},
        {OutputLost, text("done, but the output cannot be written")},
        {NothingThere, text("there is no value: not connected, or no such hardware")},
        {NotConfirmed, text("not confirmed, and nothing was sent")},
        {RecordInvalid, text("a record in the EEPROM is not valid, and no file is written")},
        {SignalsMissing, text("the expected signals did not arrive in time")},
    };
    return table;
}

const QVector<Command> &commands()
{
    static const QVector<Command> table = makeCommands();
    return table;
}

const Option *findOption(const QString &name)
{
    for (const Option &option : options()) {
        if (option.name == name)
            return &option;
    }
    return nullptr;
}

const Command *findCommand(const QStringList &words, int *used)
{
    for (const QVector<Command> *table : {&ownCommands(), &commands()}) {
        for (const Command &command : *table) {
            const QStringList name = command.words.split(QLatin1Char(' '));
            if (words.mid(0, name.size()) == name) {
                *used = name.size();
                return &command;
            }
        }
    }
    return nullptr;
}

bool belongsTo(const Option &option, const Command &command)
{
    switch (option.scope) {
    case Scope::Operation:
        return command.isOperation();
    case Scope::WifiConnect:
        return command.words == QLatin1String("wifi connect");
    case Scope::Destructive:
        return !command.question.isEmpty();
    case Scope::Secret:
        return !command.secrets.isEmpty();
    case Scope::Fields:
        return command.hasFields;
    case Scope::Monitor:
        return command.words == QLatin1String("monitor");
    case Scope::Voltage:
        return command.words == QLatin1String("battery voltage");
    default:
        return true;
    }
}

QString onlyCommand(const Option &option)
{
    QStringList found;
    for (const QVector<Command> *table : {&ownCommands(), &commands()}) {
        for (const Command &command : *table) {
            if (belongsTo(option, command))
                found << command.words;
        }
    }
    return found.size() == 1 ? found.first() : QString();
}

QString synopsis(const Command &command)
{
    QString line = command.words;
    for (const Argument &argument : command.arguments)
        line += QLatin1Char(' ') + argument.name;
    return line;
}
