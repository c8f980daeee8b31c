#ifndef PANELWINDOW_H
#define PANELWINDOW_H

#include <QSplitter>

class PanelWidget;

/**
 * The window with the front panel and the log of the bus beside it. The log shows the panel's
 * commands, but not the panel's own calls.
 */
class PanelWindow : public QSplitter
{
    Q_OBJECT

public:
    /**
     * Takes ownership of @p panel.
     *
     * @param size the panel's size; the log's width is added
     */
    PanelWindow(PanelWidget *panel, const QSize &size);
};

#endif
