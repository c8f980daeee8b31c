#include "networkinterface.h"

#include <QFile>

QNetworkInterface findNetworkInterface(const QString &name)
{
    const QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface &interface : interfaces) {
        if (interface.name() == name)
            return interface;
    }
    return QNetworkInterface();
}

ushort maximumTransmissionUnit(const QNetworkInterface &interface)
{
    QFile file(QStringLiteral("/sys/class/net/%1/mtu").arg(interface.name()));
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed().toUShort() : ushort(0);
}
