#include "wifitest.h"

QString WifiTest::technology(const char *method, const char *values)
{
    return QStringLiteral("Technology.%1 %2 (%3)")
        .arg(QLatin1String(method), ConnmanStandIn::wifiTechnology, QLatin1String(values));
}

QString WifiTest::agent(const char *method)
{
    return QStringLiteral("Manager.%1 / (o:\"/KyComMgr/Agent\")").arg(QLatin1String(method));
}

QString WifiTest::service(const char *method, const char *values)
{
    return QStringLiteral("Service.%1 %2 (%3)")
        .arg(QLatin1String(method), networkPath(QStringLiteral("Lab")), QLatin1String(values));
}

QString WifiTest::join(const QString &name)
{
    return wifi.call(QStringLiteral("connect"),
                     {QVariantMap{{QStringLiteral("Service"), name},
                                  {QStringLiteral("User"), QStringLiteral("me")},
                                  {QStringLiteral("Password"), QStringLiteral("secret")}}});
}

void WifiTest::letModuleSwitch()
{
    passModuleDelay();
    QVERIFY(waitForTrace(QStringLiteral("slotLoadFirmwareFinishedDelayed"),
                         script.log().count(QStringLiteral("end 1"))));
}

void WifiTest::scan()
{
    QCOMPARE(wifi.call(QStringLiteral("scan")), QStringLiteral("()"));
    letModuleSwitch();
}

void WifiTest::reach(const QString &name)
{
    connman.setServices({network(QStringLiteral("Lab"), QStringLiteral("idle"))});
    begin();
    QCOMPARE(join(), QStringLiteral("()"));
    letModuleSwitch();
    QVERIFY(connman.waitForCall(connectLab));
    if (name == QLatin1String("configuration") || name == QLatin1String("online")) {
        announceService(QStringLiteral("ready"));
        // The daemon must handle the state before the address comes.
        settle();
    }
    if (name == QLatin1String("online"))
        connman.setProperty(lab, QStringLiteral("IPv4"), address);
    const QStringList announcements = announced();
    QVERIFY(!announcements.isEmpty());
    QVERIFY(announcements.last().endsWith(QStringLiteral("<\"%1\">)").arg(name)));
    orders();
}

void WifiTest::announceService(const QString &serviceState)
{
    connman.storeProperty(lab, QStringLiteral("State"), serviceState);
    connman.emitServicesChanged();
}
