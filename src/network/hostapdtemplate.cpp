#include "hostapdtemplate.h"

#include <QList>

#include <algorithm>

namespace
{
bool hasControlCharacter(const QString &text)
{
    return std::any_of(text.cbegin(), text.cend(), [](QChar character) {
        return character.category() == QChar::Other_Control;
    });
}
} // namespace

QString hostapdTemplateName(const QString &security)
{
    return security == QLatin1String("WPA2") ? QStringLiteral("hostapd_ccmp.conf")
                                             : QStringLiteral("hostapd_open.conf");
}

bool fitsHostapdLines(const AccessPointParameters &parameters)
{
    const QString *const texts[] = {&parameters.ssid, &parameters.password, &parameters.address};
    return std::none_of(std::begin(texts), std::end(texts),
                        [](const QString *text) { return hasControlCharacter(*text); });
}

QByteArray hostapdConfiguration(const QByteArray &templateText,
                                const AccessPointParameters &parameters)
{
    const struct {
        const char *key;
        QByteArray value;
    } replacements[] = {
        {"channel", QByteArray::number(parameters.channel)},
        {"ssid", parameters.ssid.toUtf8()},
        {"wpa_passphrase", parameters.password.toUtf8()},
        {"own_ip_addr", parameters.address.toUtf8()},
    };

    QList<QByteArray> lines = templateText.split('\n');
    for (QByteArray &line : lines) {
        const QList<QByteArray> pieces = line.split('=');
        if (pieces.size() != 2)
            continue;
        for (const auto &replacement : replacements) {
            if (pieces.first() == replacement.key)
                line = pieces.first() + '=' + replacement.value;
        }
    }
    return lines.join('\n');
}
