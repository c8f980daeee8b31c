#include "instrumentview.h"

#include "present.h"

#include <QStringList>

#include <iterator>

namespace
{
const QString accessDenied = QStringLiteral("org.freedesktop.DBus.Error.AccessDenied");

/** Returns the LEDs that are not off: most LEDs are off. */
QString ledText(const QVariant &value, const QString &)
{
    QStringList lit;
    const QVariantMap leds = value.toMap();
    for (auto led = leds.constBegin(); led != leds.constEnd(); ++led) {
        if (led.value().toString() != QLatin1String("OFF"))
            lit << led.key() + QLatin1Char('=') + led.value().toString();
    }
    return lit.isEmpty() ? QStringLiteral("all off") : lit.join(QStringLiteral(", "));
}

QString strengthText(const QVariant &value, const QString &unit)
{
    const QVariantMap strength = value.toMap();
    return strength.isEmpty() ? QStringLiteral("none") : inlineText(strength.first(), unit);
}

/** An interface without an address is not connected. */
QString ipv4Text(const QVariant &value, const QString &)
{
    const QVariantMap ipv4 = value.toMap();
    QStringList texts{inlineText(ipv4.value(QStringLiteral("Address")))};
    if (texts.first().isEmpty())
        return QStringLiteral("not connected");
    for (const char *key : {"Netmask", "Gateway"}) {
        const QString name = QLatin1String(key);
        if (ipv4.contains(name))
            texts << name.toLower() + QLatin1Char(' ') + inlineText(ipv4.value(name));
    }
    return QStringLiteral("%1 (%2)").arg(texts.join(QStringLiteral(", ")),
                                         inlineText(ipv4.value(QStringLiteral("Method"))));
}

QString interfaceText(const QVariant &value, const QString &)
{
    const QVariantMap interface = value.toMap();
    if (interface.isEmpty())
        return QStringLiteral("no interface");
    return QStringLiteral("%1, %2, MTU %3")
        .arg(inlineText(interface.value(QStringLiteral("Interface"))),
             inlineText(interface.value(QStringLiteral("Address"))),
             inlineText(interface.value(QStringLiteral("MTU"))));
}

/** The access point's interface exists only while the Wi-Fi module is in access-point mode. */
QString accessPointText(const QVariant &value, const QString &unit)
{
    return value.toMap().isEmpty() ? QStringLiteral("off") : interfaceText(value, unit);
}

QString mapText(const QVariant &value, const QString &unit)
{
    return value.toMap().isEmpty() ? QStringLiteral("none") : inlineText(value, unit);
}

/** One line of the screen: its title, the call that queries its value, and the format. */
struct Question {
    const char *title;
    const char *key;
    const char *path;
    const char *interface;
    const char *method; ///< null: the query reads a property instead
    const char *property;
    const char *argument; ///< null: none
    QString (*text)(const QVariant &value, const QString &unit);
    const char *unit;
};

/** Returns a query of a method without arguments. */
constexpr Question asks(const char *title, const char *key, const char *path, const char *interface,
                        const char *method,
                        QString (*text)(const QVariant &value, const QString &unit),
                        const char *unit = "")
{
    return {title, key, path, interface, method, nullptr, nullptr, text, unit};
}

const Question questions[] = {
    asks("Profile", "profile", configPath, "Users", "getUser", inlineText),
    {"Battery", "battery", devicePath, "Alimentation", nullptr, "batteryStatus", nullptr,
     inlineText, ""},
    asks("Battery voltage", "batteryVoltage", devicePath, "Alimentation", "getBatteryVoltage",
         inlineText, "mV"),
    asks("LEDs", "leds", devicePath, "LED", "getLEDStatus", ledText),
    asks("Temperatures", "temperatures", devicePath, "Temperature", "getTemperatures", mapText,
         "\u00b0C"),
    {"SD card mounted", "sdMounted", devicePath, "Storage", "isMounted", nullptr, "SD", inlineText,
     ""},
    {"USB key mounted", "usbMounted", devicePath, "Storage", "isMounted", nullptr, "USB",
     inlineText, ""},
    asks("Backlight", "backlight", devicePath, "Backlight", "getBacklight", inlineText, "%"),
    asks("Backlight step", "backlightStep", devicePath, "Backlight", "getBacklightStep",
         inlineText),
    asks("Ambient light", "brightness", devicePath, "Brightness", "getBrightness", inlineText,
         "lux"),
    asks("Ethernet", "ethernet", comPath, "Ethernet", "getIPv4", ipv4Text),
    asks("Ethernet hardware", "ethernetHardware", comPath, "Ethernet", "getHardwareInfos",
         interfaceText),
    asks("Wi-Fi", "wifi", comPath, "WIFI", "getIPv4", ipv4Text),
    asks("Wi-Fi hardware", "wifiHardware", comPath, "WIFI", "getHardwareInfos", interfaceText),
    asks("Wi-Fi strength", "wifiStrength", comPath, "WIFI", "getStrength", strengthText, "%"),
    asks("Access point", "accessPointHardware", comPath, "WIFIAP", "getHardwareInfos",
         accessPointText),
    asks("Software", "software", devicePath, "Version", "getSoftwareVersions", mapText),
    asks("Revisions", "revisions", devicePath, "Version", "getRevision", mapText),
};

Answer ask(const Question &question)
{
    const QString path = QString::fromLatin1(question.path);
    const QString interface = QString::fromLatin1(question.interface);
    if (!question.method)
        return readProperty(path, interface, QString::fromLatin1(question.property));
    QVariantList arguments;
    if (question.argument)
        arguments << QString::fromLatin1(question.argument);
    return call(path, interface, QString::fromLatin1(question.method), arguments);
}

QString answerText(const Question &question, const Answer &answer)
{
    return answer.isGood() ? question.text(answer.values.value(0), QString::fromUtf8(question.unit))
                           : QStringLiteral("not available: ") + answer.complaint;
}

bool isConnected(const Answer &ipv4)
{
    return !ipv4.values.value(0).toMap().value(QStringLiteral("Address")).toString().isEmpty();
}

/** Returns true for an empty map: the daemon has no value. */
bool isNothing(const QVariant &value)
{
    return value.userType() == QMetaType::QVariantMap && value.toMap().isEmpty();
}
} // namespace

InstrumentView::InstrumentView()
    : m_answers(int(std::size(questions)), Answer{InterfaceAbsent, {}, {}, {}, {}})
{
}

Answer InstrumentView::askAgain(int index)
{
    return m_answers[index] = ::ask(questions[index]);
}

Answer InstrumentView::ask()
{
    for (int index = 0; index < m_answers.size(); ++index) {
        Answer answer = askAgain(index);
        // If the bus policy denies one call, it denies all of them.
        if (answer.status == DaemonAway || answer.errorName == accessDenied)
            return answer;
    }
    return {Success, {}, {}, {}, {}};
}

Answer InstrumentView::ask(const QString &interface)
{
    Answer answer = {Success, {}, {}, {}, {}};
    for (int index = 0; index < m_answers.size(); ++index) {
        if (interface == QLatin1String(questions[index].interface))
            answer = askAgain(index);
        if (answer.status == DaemonAway)
            return answer;
    }
    return answer;
}

QString InstrumentView::text() const
{
    Lines lines;
    bool isJoined = false;
    for (int index = 0; index < m_answers.size(); ++index) {
        const Question &question = questions[index];
        Answer answer = m_answers.at(index);
        // Leave out interfaces that this model does not have, for example the backlight of a model
        // without a screen.
        if (answer.status == InterfaceAbsent)
            continue;
        // The daemon also returns the strength of a network that the station has left.
        if (question.text == strengthText && answer.isGood() && !isJoined)
            answer.values = {QVariantMap()};
        if (question.text == ipv4Text)
            isJoined = isConnected(answer);
        lines.add(QString::fromLatin1(question.title), answerText(question, answer));
    }
    return lines.text();
}

QVariantMap InstrumentView::values() const
{
    QVariantMap values;
    bool isJoined = false;
    for (int index = 0; index < m_answers.size(); ++index) {
        const Question &question = questions[index];
        const Answer &answer = m_answers.at(index);
        if (answer.status == InterfaceAbsent)
            continue;
        QVariant value = answer.values.value(0);
        if (question.text == ipv4Text)
            isJoined = isConnected(answer);
        const bool needsAddress = question.text == ipv4Text || question.text == strengthText;
        if (isNothing(value) || (needsAddress && !isJoined))
            value = QVariant();
        values.insert(QString::fromLatin1(question.key), value);
    }
    return values;
}
