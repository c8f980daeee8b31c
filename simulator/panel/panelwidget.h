#ifndef PANELWIDGET_H
#define PANELWIDGET_H

#include "daemonview.h"
#include "drawing.h"
#include "instrument.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTimer>
#include <QWidget>

class QMenu;

/**
 * The front panel: shows the instrument, and runs a command when an element is pressed or dragged.
 */
class PanelWidget : public QWidget
{
    Q_OBJECT

public:
    /**
     * Loads the drawing. PATH must contain the commands that the panel runs.
     *
     * @param drawing path of the SVG file
     */
    explicit PanelWidget(const QString &drawing);
    ~PanelWidget() override;

    bool isGood() const { return !m_drawing.size().isEmpty(); }
    /** Returns true if everything that a picture shows is known. */
    bool isComplete() const;
    /** Queues a command and runs it like the command of a mouse click. */
    void run(const QString &command);
    /** Returns true while a command is queued or runs. */
    bool isBusy() const;
    /** Queries the daemon again; until it has answered, isComplete() returns false. */
    void askAgain() { m_daemonView.askAgain(); }
    /** Returns a picture of the current panel; blinking LEDs are lit. */
    QImage picture(const QSize &size);

    /** The centre of an element on the widget. */
    QPoint placeOf(const QString &element) const;
    /** A point of an element on the widget: @p place 0 is its left end, 1 its right end. */
    QPoint placeOf(const QString &element, double place) const;

    const Instrument &instrument() const { return m_instrument; }
    const DaemonView &daemonView() const { return m_daemonView; }
    QMenu *faultMenu() const { return m_faultMenu; }
    QSize sizeHint() const override;

Q_SIGNALS:
    /** The panel has started a command; @p command is what a user types for it, see asTyped(). */
    void commandRan(const QString &command);
    void busCame();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    void look();
    void startNext();
    void takeEnd(QProcess *hand, const QString &typed, int status);
    void showFaultMenu(const QPoint &place);
    QString elementAt(const QPoint &place) const;
    double placeOn(const QString &element, const QPoint &place) const;
    QRectF boundsOnWidget(const QString &element) const;

    Drawing m_drawing;
    Instrument m_instrument;
    DaemonView m_daemonView;
    Look m_look;
    QTimer m_timer;
    QElapsedTimer m_clock;
    int m_ticks = 0;
    /** The last command's process; null once it has ended or exceeded its timeout. */
    QProcess *m_hand = nullptr;
    QStringList m_commands;
    QString m_dragged;
    QString m_dragCommand;
    QMenu *m_faultMenu;
};

#endif
