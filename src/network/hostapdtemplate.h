#ifndef HOSTAPDTEMPLATE_H
#define HOSTAPDTEMPLATE_H

#include <QByteArray>
#include <QString>

/** What a client chooses of an access point. */
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
 * Whether hostapd would read each of @p parameters as one value.
 *
 * False for a text with a control character: a line feed would add directives of the caller's
 * choice to a file that hostapd reads as root. Nothing else is validated.
 */
bool fitsHostapdLines(const AccessPointParameters &parameters);

/**
 * A hostapd configuration from the text of a template.
 *
 * Lines of exactly one "=" whose key is "channel", "ssid", "wpa_passphrase" or "own_ip_addr", with
 * no blank around it, get the value from @p parameters as it stands, in UTF-8. Every other line is
 * kept byte for byte. No line is added where fitsHostapdLines() holds for @p parameters.
 */
QByteArray hostapdConfiguration(const QByteArray &templateText,
                                const AccessPointParameters &parameters);

#endif
