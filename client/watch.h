#ifndef WATCH_H
#define WATCH_H

#include "bus.h"
#include "instrumentview.h"

#include <QDBusMessage>
#include <QObject>
#include <QSet>
#include <QTimer>

/** The whole instrument on one terminal screen, updated on every change. */
class Watch : public QObject
{
    Q_OBJECT

public:
    Watch();

    /** Runs until a signal ends the program; restores the terminal. */
    ExitStatus run();

private Q_SLOTS:
    void take(const QDBusMessage &message);
    void refresh();
    void askAndDraw();
    void leave();

private:
    void draw(const QString &headline);
    void takeSignal(int descriptor);

    InstrumentView m_view;
    /** The interfaces to query again before the next update of the screen. */
    QSet<QString> m_changed;
    QTimer m_drawing;
    QTimer m_refreshing;
    int m_refreshes;
    bool m_isDaemonThere;
};

#endif
