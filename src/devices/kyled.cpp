#include "kyled.h"

#include "error.h"
#include "ledpattern.h"

KyLED::KyLED(QObject *parent) : QDBusAbstractAdaptor(parent) {}

void KyLED::setLEDStatus(QString led, QString status, const QDBusMessage &message)
{
    const std::optional<int> number = ledNamed(led);
    if (!number) {
        sendErrorReply(Error::InvalidArgument, QStringLiteral("The LED is unknown"), message);
        return;
    }
    const std::optional<int> state = ledStateNamed(status);
    if (!state) {
        sendErrorReply(Error::InvalidArgument, QStringLiteral("The status is unknown"), message);
        return;
    }
    if (m_leds.setLedState(static_cast<e_leds>(*number), static_cast<e_led_state>(*state)) != 0) {
        // Clients match on this wording.
        sendErrorReply(Error::Write,
                       QStringLiteral("Enable to set led ") + led + QStringLiteral(" to status ") +
                           status,
                       message);
    }
}

QVariantMap KyLED::getLEDStatus()
{
    QVariantMap shown;
    for (const NamedValue &led : ledNames()) {
        e_led_state state = LED_UNKNOWN;
        if (m_leds.getLedState(static_cast<e_leds>(led.value), &state) == 0)
            shown.insert(led.name, ledStateName(static_cast<int>(state)));
    }
    return shown;
}

void KyLED::prepareForShutdown()
{
    show({{Leds::POWER_G, Leds::OFF}, {Leds::POWER_Y, Leds::BLINK_3HZ}});
}

void KyLED::handleAlimentation(const QString &status)
{
    if (const auto known = batteryStatusNamed(status))
        show(batteryGaugePattern(*known));
}

void KyLED::handlePowerButton(const QString &status)
{
    if (const auto known = batteryStatusNamed(status))
        show(powerButtonPattern(*known));
}

void KyLED::handleStorage(const QString &device, bool isMounted)
{
    if (device == QLatin1String("SD"))
        show({{Leds::SD_STATUS, isMounted ? Leds::ON : Leds::OFF}});
}

void KyLED::show(const QVector<LedSetting> &settings)
{
    for (const LedSetting &setting : settings)
        m_leds.setLedState(static_cast<e_leds>(setting.led),
                           static_cast<e_led_state>(setting.state));
}
