#ifndef WIFISTATION_H
#define WIFISTATION_H

#include "linkdriver.h"
#include "technologywatch.h"

class KyConnmanAgent;
class QDBusPendingCallWatcher;

/** Carries out what is the Wi-Fi station's alone, and writes the trace. */
class WifiStation : public LinkDriver
{
    Q_OBJECT

public:
    /** Listens to ConnMan. */
    explicit WifiStation(LinkParts &parts);

    /** Powers the technology off and offers the agent. */
    void start();

Q_SIGNALS:
    /** The networks that a scan found; see wifiScanList(). */
    void servicesListChanged(const QVariantMap &services);

protected:
    LinkEvent perform(LinkAction action) override;
    void handled(LinkEvent event, bool isDecided) override;

private:
    void offerAgent();
    void takeRequest();
    LinkEvent judge();
    LinkEvent forgetNetwork();
    void requestScan();
    void requestConnect();
    void connectAnswered(QDBusPendingCallWatcher *reply);
    void registerAgent();
    void unregisterAgent();
    void judgeService(const QString &name, const QVariant &value);
    void trace(const char *method) const;

    TechnologyWatch m_watch;
    KyConnmanAgent *m_agent = nullptr;
    /** The name of the network that the last connect named. */
    QString m_requestedService;
    /** ConnMan's reply to the last Connect; null when it has come. */
    const QDBusPendingCallWatcher *m_connectReply = nullptr;
    /** Bounds the wait for the technology to be off. */
    QTimer m_leavingTime;
};

#endif
