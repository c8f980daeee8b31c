#ifndef HOSTAPDTEMPLATE_H
#define HOSTAPDTEMPLATE_H

#include <QByteArray>
#include <QString>

/** What a client chooses of an access point; nothing of it is validated. */
struct AccessPointParameters {
    quint16 channel;
    QString ssid;
    QString password;
    /** The address that the access point gives itself. */
    QString address;
};

/**
 * The name of the template for @p security: the encrypted one for exactly "WPA2", the open one
 * for every other text.
 */
QString hostapdTemplateName(const QString &security);

/**
 * A hostapd configuration from the text of a template.
 *
 * Lines of exactly one "=" whose key is "channel", "ssid", "wpa_passphrase" or "own_ip_addr", with
 * no blank around it, get the value from @p parameters as it stands, in UTF-8. Every other line is
 * kept byte for byte, and no line is added.
 */
QByteArray hostapdConfiguration(const QByteArray &templateText,
                                const AccessPointParameters &parameters);

#endif
