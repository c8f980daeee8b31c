#include "accesspoint.h"

#include <QCryptographicHash>
#include <QStringList>

namespace
{
constexpr int longestSsid = 32;

void readFlag(const QByteArray &text, bool &flag)
{
    if (text == "0" || text == "1")
        flag = text == "1";
}

void readSignal(const QByteArray &text, short &signal)
{
    bool isNumber = false;
    const short value = text.toShort(&isNumber);
    if (isNumber && value <= 0 && value >= -120)
        signal = value;
}

void readSecurity(const QByteArray &text, bool &isProtected)
{
    if (text == "open" || text == "wpa2")
        isProtected = text == "wpa2";
}

/** Returns a hardware address that is derived from the name of the directory. */
QByteArray hardwareAddress(const QString &directory)
{
    const QByteArray hash =
        QCryptographicHash::hash(directory.toUtf8(), QCryptographicHash::Md5).left(5);
    return '\x02' + hash;
}
} // namespace

AccessPoint accessPointFrom(const QMap<QString, QByteArray> &files, const AccessPoint &before)
{
    AccessPoint result = before;
    const QByteArray ssid = files.value(QStringLiteral("ssid"));
    if (!ssid.isEmpty() && ssid.size() <= longestSsid)
        result.ssid = ssid;
    const QByteArray passphrase = files.value(QStringLiteral("passphrase"));
    if (!passphrase.isEmpty())
        result.passphrase = passphrase;
    readSignal(files.value(QStringLiteral("signal")), result.signal);
    readSecurity(files.value(QStringLiteral("security")), result.isProtected);
    readFlag(files.value(QStringLiteral("hidden")), result.isHidden);
    readFlag(files.value(QStringLiteral("in_range")), result.isInRange);
    readFlag(files.value(QStringLiteral("refuses")), result.refuses);
    readFlag(files.value(QStringLiteral("mute")), result.isMute);
    return result;
}

QVariantMap bssProperties(const QString &directory, const AccessPoint &accessPoint, bool isNamed)
{
    QVariantMap rsn;
    if (accessPoint.isProtected)
        rsn = {{QStringLiteral("KeyMgmt"), QStringList{QStringLiteral("wpa-psk")}},
               {QStringLiteral("Pairwise"), QStringList{QStringLiteral("ccmp")}},
               {QStringLiteral("Group"), QStringLiteral("ccmp")}};
    return {
        {QStringLiteral("BSSID"), hardwareAddress(directory)},
        {QStringLiteral("SSID"), isNamed ? accessPoint.ssid : QByteArray("")},
        {QStringLiteral("Mode"), QStringLiteral("infrastructure")},
        {QStringLiteral("Signal"), QVariant::fromValue(accessPoint.signal)},
        {QStringLiteral("Frequency"), QVariant::fromValue(ushort(2412))},
        {QStringLiteral("Privacy"), accessPoint.isProtected},
        {QStringLiteral("RSN"), rsn},
        {QStringLiteral("WPA"), QVariantMap()},
        {QStringLiteral("IEs"), QByteArray("")},
    };
}
