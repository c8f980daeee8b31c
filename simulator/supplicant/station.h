#ifndef STATION_H
#define STATION_H

#include "scanresults.h"

#include <QDBusMessage>
#include <QObject>
#include <QStringList>
#include <QTimer>

class Air;

/** A Wi-Fi interface that the stand-in for wpa_supplicant controls: scans and joins networks. */
class Station : public QObject
{
    Q_OBJECT

public:
    Station(Air &air, const QString &interfaceName, const QString &path);

    QString interfaceName() const { return m_interfaceName; }
    QString path() const { return m_path; }

    QVariantMap properties() const;

    /** Returns the properties of the scan result at @p path; empty if there is none. */
    QVariantMap resultProperties(const QString &path) const { return m_results.properties(path); }

    /** Carries out and answers a call to the D-Bus object of this interface. */
    void receive(const QDBusMessage &call);

private:
    QDBusMessage scan(const QDBusMessage &call);
    QDBusMessage addNetwork(const QDBusMessage &call);
    QDBusMessage removeNetwork(const QDBusMessage &call);
    QDBusMessage selectNetwork(const QDBusMessage &call);
    QDBusMessage disconnect(const QDBusMessage &call);

    void finishScan();
    void associate();
    void proceed();
    void leave();
    void setState(const QString &state);
    void observeAir();
    void emitSignal(const QString &name, const QList<QVariant> &values) const;
    void emitChange(const QVariantMap &properties) const;

    Air &m_air;
    const QString m_interfaceName;
    const QString m_path;
    ScanResults m_results;
    QTimer m_scan;
    QList<QByteArray> m_askedFor;
    QMap<QString, QVariantMap> m_networks;
    int m_lastNetwork = -1;
    /** The network to join, and to join again after the connection is lost. */
    QString m_selected;
    QString m_accessPoint;
    QString m_state;
    QStringList m_steps;
    QTimer m_step;
    QTimer m_retry;
};

#endif
