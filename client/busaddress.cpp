#include "busaddress.h"

#include "textrules.h"

namespace
{
/**
 * Escapes a value of a D-Bus address. Letters, digits and "-_/." stay; every other byte becomes a
 * percent sign with two hexadecimal digits.
 */
QString escaped(const QString &text)
{
    QString made;
    const QByteArray bytes = text.toUtf8();
    for (const char byte : bytes) {
        const bool isPlain = (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'z') ||
                             (byte >= 'A' && byte <= 'Z') || byte == '-' || byte == '_' ||
                             byte == '/' || byte == '.';
        if (!isPlain)
            made += QLatin1Char('%') + QString::fromLatin1(QByteArray(1, byte).toHex());
        else
            made += QLatin1Char(byte);
    }
    return made;
}
} // namespace

QString addressOfHost(const QString &host)
{
    // "--" ends the options of ssh.
    return QStringLiteral("unixexec:path=ssh,argv1=-xT,argv2=--,argv3=%1,"
                          "argv4=systemd-stdio-bridge")
        .arg(escaped(host));
}

bool isHostName(const QString &host)
{
    return !host.isEmpty() && isPrintableAscii(host) && !host.contains(QLatin1Char(' ')) &&
           !host.startsWith(QLatin1Char('-'));
}
