#ifndef HOSTAPDTEMPLATE_H
#define HOSTAPDTEMPLATE_H

#include <QByteArray>
#include <QString>

/** A client's choices for an access point. */
struct AccessPointParameters {
    quint16 channel;
    QString ssid;
    QString password;
    /** The access point's own address. */
    QString address;
};

/**
 * Returns the file name of the template for @p security: the template of an encrypted network for
 * exactly "WPA2", otherwise the template of an open network.
 */
QString hostapdTemplateName(const QString &security);

/**
 * Returns true if hostapd would read each of @p parameters as one value.
 *
 * False for a text with a control character: a line feed would add the caller's directives to a
 * file that hostapd reads as root. Nothing else is validated.
 */
bool fitsHostapdLines(const AccessPointParameters &parameters);

/**
 * Makes a hostapd configuration from the text of a template.
 *
 * A line with exactly one "=", whose key is "channel", "ssid", "wpa_passphrase" or "own_ip_addr"
 * without surrounding blanks, gets the unmodified value from @p parameters, in UTF-8. Every other
 * line stays the same, byte for byte. No line is added if fitsHostapdLines() is true for @p
 * parameters.
 */
QByteArray hostapdConfiguration(const QByteArray &templateText,
                                const AccessPointParameters &parameters);

#endif
