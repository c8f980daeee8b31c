#include "kyled.h"

#include "enumnames.h"
#include "error.h"
#include "ledpattern.h"

namespace
{
QMetaEnum ledNames()
{
    return registeredEnum(Leds::staticMetaObject, "Led");
}

QMetaEnum stateNames()
{
    return registeredEnum(Leds::staticMetaObject, "State");
}

/** An LED or a state of one, by its name as a text that need not be made again for each reply. */
struct Named {
    int value;
    QString name;
};

QVector<Named> listNames(const QMetaEnum &enumeration)
{
    QVector<Named> names;
    for (int index = 0; index < enumeration.keyCount(); ++index)
        names.append({enumeration.value(index), QString::fromLatin1(enumeration.key(index))});
    return names;
}

/** A number that the library should not give still gets a name that clients know. */
QString stateName(e_led_state state)
{
    static const QVector<Named> states = listNames(stateNames());
    for (const Named &known : states) {
        if (known.value == static_cast<int>(state))
            return known.name;
    }
    return enumName(stateNames(), Leds::UNKNOWN);
}

std::optional<Battery::Status> batteryStatusNamed(const QString &name)
{
    const std::optional<int> value =
        enumValue(registeredEnum(Battery::staticMetaObject, "Status"), name);
    if (!value)
        return std::nullopt;
    return static_cast<Battery::Status>(*value);
}
} // namespace

KyLED::KyLED(QObject *parent) : QDBusAbstractAdaptor(parent) {}

void KyLED::setLEDStatus(QString led, QString status, const QDBusMessage &message)
{
    const std::optional<int> number = enumValue(ledNames(), led);
    if (!number) {
        sendErrorReply(Error::InvalidArgument, QStringLiteral("The LED is unknown"), message);
        return;
    }
    const std::optional<int> state = enumValue(stateNames(), status);
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
    static const QVector<Named> leds = listNames(ledNames());
    for (const Named &led : leds) {
        e_led_state state = LED_UNKNOWN;
        if (m_leds.getLedState(static_cast<e_leds>(led.value), &state) == 0)
            shown.insert(led.name, stateName(state));
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
