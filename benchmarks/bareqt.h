#ifndef BAREQT_H
#define BAREQT_H

#include <QDBusAbstractAdaptor>
#include <QVariantMap>

class QDBusMessage;

/** A minimal adaptor. */
class Bare : public QDBusAbstractAdaptor
{
public:
    explicit Bare(QObject *parent) : QDBusAbstractAdaptor(parent) {}
};

/*
 * The adaptors of the bare service that have a method or a property. The build generates the other
 * adaptors, which have neither, from the introspection documents (barerest.h).
 */

class BareUsers : public Bare
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.Bare.Users")

public:
    using Bare::Bare;

public Q_SLOTS:
    QString getUser(const QDBusMessage &message);
};

class BareLed : public Bare
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.Bare.LED")

public:
    using Bare::Bare;

public Q_SLOTS:
    QVariantMap getLEDStatus();
};

class BareTemperature : public Bare
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.Bare.Temperature")

public:
    using Bare::Bare;

public Q_SLOTS:
    QVariantMap getTemperatures();
};

class BareAlimentation : public Bare
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.Bare.Alimentation")
    Q_PROPERTY(QString batteryStatus READ batteryStatus)

public:
    using Bare::Bare;
    QString batteryStatus();
};

class BareVersion : public Bare
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.Bare.Version")

public:
    explicit BareVersion(QObject *parent);

public Q_SLOTS:
    QVariantMap getEepromInstrument();

private:
    const QVariantMap m_instrument;
};

class BareWatchdog : public Bare
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.Bare.Watchdog")

public:
    using Bare::Bare;

public Q_SLOTS:
    void keepAlive(const QDBusMessage &message);
};

class BareEthernet : public Bare
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.Bare.Ethernet")

public:
    using Bare::Bare;

public Q_SLOTS:
    QVariantMap getIPv4();
};

#endif
