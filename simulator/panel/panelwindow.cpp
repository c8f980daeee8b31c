#include "panelwindow.h"

#include "panelwidget.h"
#include "trafficlog.h"

namespace
{
constexpr int logWidth = 420;
} // namespace

PanelWindow::PanelWindow(PanelWidget *panel, const QSize &size)
{
    auto log = new TrafficLog;
    const auto ignorePanel = [panel, log] { log->setIgnored(panel->daemonView().ownName()); };
    ignorePanel();
    // After a new connection, the panel has another bus name.
    QObject::connect(panel, &PanelWidget::busCame, log, ignorePanel);
    QObject::connect(panel, &PanelWidget::commandRan, log, &TrafficLog::note);
    setWindowTitle(QStringLiteral("Strandel, virtual instrument"));
    addWidget(panel);
    addWidget(log);
    setStretchFactor(0, 1);
    setSizes({size.width(), logWidth});
    resize(size.width() + logWidth, size.height());
}
