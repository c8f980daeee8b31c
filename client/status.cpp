#include "status.h"

#include "bus.h"
#include "present.h"
#include "terminal.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

namespace
{
/** One part of the screen: what is asked, and the name under which it is shown. */
struct Question {
    const char *title;
    const char *key;
    const char *path;
    const char *interface;
    const char *method; ///< null: the property of the next column
    const char *property;
    const char *argument; ///< null: none
};

const char config[] = "/KyConfigMgr";
const char com[] = "/KyComMgr";
const char device[] = "/KyDeviceMgr";

const Question questions[] = {
    {"Profile", "profile", config, "Users", "getUser", nullptr, nullptr},
    {"Battery", "battery", device, "Alimentation", nullptr, "batteryStatus", nullptr},
    {"Battery voltage", "batteryVoltage", device, "Alimentation", "getBatteryVoltage", nullptr,
     nullptr},
    {"LEDs", "leds", device, "LED", "getLEDStatus", nullptr, nullptr},
    {"Temperatures", "temperatures", device, "Temperature", "getTemperatures", nullptr, nullptr},
    {"SD card mounted", "sdMounted", device, "Storage", "isMounted", nullptr, "SD"},
    {"USB key mounted", "usbMounted", device, "Storage", "isMounted", nullptr, "USB"},
    {"Backlight", "backlight", device, "Backlight", "getBacklight", nullptr, nullptr},
    {"Backlight step", "backlightStep", device, "Backlight", "getBacklightStep", nullptr, nullptr},
    {"Ambient light", "brightness", device, "Brightness", "getBrightness", nullptr, nullptr},
    {"Ethernet", "ethernet", com, "Ethernet", "getIPv4", nullptr, nullptr},
    {"Ethernet hardware", "ethernetHardware", com, "Ethernet", "getHardwareInfos", nullptr,
     nullptr},
    {"Wi-Fi", "wifi", com, "WIFI", "getIPv4", nullptr, nullptr},
    {"Wi-Fi hardware", "wifiHardware", com, "WIFI", "getHardwareInfos", nullptr, nullptr},
    {"Wi-Fi strength", "wifiStrength", com, "WIFI", "getStrength", nullptr, nullptr},
    {"Access point hardware", "accessPointHardware", com, "WIFIAP", "getHardwareInfos", nullptr,
     nullptr},
    {"Software", "software", device, "Version", "getSoftwareVersions", nullptr, nullptr},
    {"Revisions", "revisions", device, "Version", "getRevision", nullptr, nullptr},
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

/** LEDs that are off are the usual thing: only the others are worth a place on the screen. */
QString ledText(const QVariant &value)
{
    QStringList lit;
    const QVariantMap leds = value.toMap();
    for (auto led = leds.constBegin(); led != leds.constEnd(); ++led) {
        if (led.value().toString() != QLatin1String("OFF"))
            lit << led.key() + QLatin1Char('=') + led.value().toString();
    }
    return lit.isEmpty() ? QStringLiteral("all off") : lit.join(QStringLiteral(", "));
}

QString answerText(const Question &question, const Answer &answer)
{
    if (!answer.isGood())
        return QStringLiteral("not available: ") + answer.complaint();
    const QVariant value = answer.values.value(0);
    const bool isMap = value.userType() == QMetaType::QVariantMap;
    if (question.method && QLatin1String(question.method) == QLatin1String("getLEDStatus"))
        return ledText(value);
    if (isMap && value.toMap().isEmpty())
        return QStringLiteral("none");
    return inlineText(value);
}
} // namespace

int showStatus(bool asJson)
{
    if (!isDaemonThere()) {
        complain(Answer{DaemonAway, {}, {}, {}}.complaint());
        return DaemonAway;
    }
    Lines lines;
    QJsonObject object;
    for (const Question &question : questions) {
        const Answer answer = ask(question);
        if (answer.status == DaemonAway) {
            complain(answer.complaint());
            return DaemonAway;
        }
        // A model without a screen has no backlight and no light sensor, which is no failure.
        if (answer.status == InterfaceAbsent)
            continue;
        lines.add(QString::fromLatin1(question.title), answerText(question, answer));
        object.insert(QString::fromLatin1(question.key),
                      answer.isGood() ? replyJson(answer.values) : QJsonValue());
    }
    print(asJson ? QString::fromUtf8(QJsonDocument(object).toJson()) : lines.text());
    return Success;
}
