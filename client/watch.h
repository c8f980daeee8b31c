#ifndef WATCH_H
#define WATCH_H

#include "bus.h"
#include "instrumentview.h"

#include <QDBusMessage>
#include <QObject>
#include <QSet>
#include <QTimer>

/** The whole instrument on one screen of a terminal, drawn again when something changes. */
class Watch : public QObject
{
    Q_OBJECT

public:
    Watch();

    /** Runs until the program is asked to end; leaves the terminal as it was. */
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
    /** Of what is asked for again before the screen is drawn. */
    QSet<QString> m_changed;
    QTimer m_drawing;
    QTimer m_refreshing;
    int m_refreshes;
    bool m_isDaemonThere;
};

#endif
