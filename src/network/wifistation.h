#ifndef WIFISTATION_H
#define WIFISTATION_H

#include "linkdriver.h"
#include "technologywatch.h"

#include <QDBusPendingCallWatcher>

#include <memory>

class KyConnmanAgent;

/** Carries out the actions that are specific to the Wi-Fi station, and writes the trace. */
class WifiStation : public LinkDriver
{
    Q_OBJECT

public:
    /** Subscribes to ConnMan's signals. */
    explicit WifiStation(LinkParts &parts);

    /** Powers the technology off and exports the agent. */
    void start();

Q_SIGNALS:
    /** The networks that a scan found; see wifiScanList(). */
    void servicesListChanged(const QVariantMap &services);

protected:
    LinkEvent perform(LinkAction action) override;
    void handled(LinkEvent event, bool isDecided) override;

private:
    void exportAgent();
    void takeRequest();
    LinkEvent judge();
    LinkEvent forgetNetwork();
    void requestScan();
    void requestConnect();
    void connectAnswered();
    void registerAgent();
    void unregisterAgent();
    void handleServiceProperty(const QString &name, const QVariant &value);
    void trace(const char *method) const;

    TechnologyWatch m_watch;
    KyConnmanAgent *m_agent = nullptr;
    /** The network of the last connect. */
    QString m_requestedService;
    /** Waits for the reply to the last Connect. */
    std::unique_ptr<QDBusPendingCallWatcher> m_connectReply;
    /** Limits how long a disconnect waits until the technology is off. */
    QTimer m_leavingTime;
};

#endif
