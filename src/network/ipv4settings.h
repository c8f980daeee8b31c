#ifndef IPV4SETTINGS_H
#define IPV4SETTINGS_H

#include <QStringList>
#include <QVariantMap>

/** A client's IPv4 settings for the next connection. */
class Ipv4Settings
{
public:
    /**
     * Stores a client's @p settings.
     *
     * "Method", "Address", "Netmask" and "Gateway" replace the stored values. "DNS1" and "DNS2" are
     * appended to the name servers, of which the last 64 are kept. A text of more than 255
     * characters counts as empty. With the method "manual", defaults replace missing and invalid
     * addresses (see repairedIPv4()).
     */
    void take(const QVariantMap &settings);

    const QVariantMap &configuration() const { return m_configuration; }
    const QStringList &nameservers() const { return m_nameservers; }

private:
    QVariantMap m_configuration;
    QStringList m_nameservers;
};

#endif
