#include "panelwidget.h"

#include "hands.h"
#include "surroundings.h"

#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace
{
/** The interval of polling. An LED that blinks at 3 Hz changes every sixth of a second. */
constexpr int tickMs = 50;
/** The bus and the surroundings of the daemon are polled less often than the board. */
constexpr int slowTicks = 4;
/**
 * The longest time that a command delays the next one. For example, "daemon stop" does not end
 * while a debugger holds the daemon.
 */
constexpr int handTimeoutMs = 2000;
} // namespace

PanelWidget::PanelWidget(const QString &drawing) : m_drawing(drawing), m_faultMenu(new QMenu(this))
{
    setMouseTracking(true);
    setMinimumSize(480, 300);
    m_clock.start();
    QObject::connect(&m_daemonView, &DaemonView::busCame, this, &PanelWidget::busCame);
    QObject::connect(&m_timer, &QTimer::timeout, this, &PanelWidget::look);
    m_timer.start(tickMs);
    look();
}

PanelWidget::~PanelWidget()
{
    const QList<QProcess *> hands = findChildren<QProcess *>();
    for (QProcess *hand : hands) {
        hand->disconnect();
        if (hand != m_hand)
            hand->kill();
        hand->waitForFinished(handTimeoutMs);
    }
}

bool PanelWidget::isComplete() const
{
    return m_daemonView.isComplete() && !m_instrument.board.isEmpty();
}

bool PanelWidget::isBusy() const
{
    const QList<QProcess *> hands = findChildren<QProcess *>();
    return !m_commands.isEmpty() ||
           std::any_of(hands.begin(), hands.end(),
                       [](const QProcess *hand) { return hand->state() != QProcess::NotRunning; });
}

QSize PanelWidget::sizeHint() const
{
    return m_drawing.size().toSize();
}

void PanelWidget::look()
{
    if (m_ticks++ % slowTicks == 0) {
        m_daemonView.joinBus();
        readSurroundings(m_instrument);
    }
    readBoard(m_instrument);
    m_daemonView.fill(m_instrument);
    const Look now = lookOf(m_instrument, m_clock.elapsed());
    if (now == m_look)
        return;
    m_look = now;
    update();
}

QImage PanelWidget::picture(const QSize &size)
{
    // Poll the surroundings of the daemon now, too.
    m_ticks = 0;
    look();
    return m_drawing.picture(lookOf(m_instrument, 0), size);
}

void PanelWidget::paintEvent(QPaintEvent *)
{
    QPainter(this).drawImage(rect(), m_drawing.picture(m_look, size() * devicePixelRatio()));
}

QRectF PanelWidget::boundsOnWidget(const QString &element) const
{
    const QRectF place = m_drawing.placeIn(size());
    const double scale = place.width() / m_drawing.size().width();
    const QRectF bounds = m_drawing.bounds(element);
    return {place.topLeft() + bounds.topLeft() * scale, bounds.size() * scale};
}

QPoint PanelWidget::placeOf(const QString &element) const
{
    return placeOf(element, 0.5);
}

QPoint PanelWidget::placeOf(const QString &element, double place) const
{
    const QRectF bounds = boundsOnWidget(element);
    return QPointF(bounds.left() + place * bounds.width(), bounds.center().y()).toPoint();
}

QString PanelWidget::elementAt(const QPoint &place) const
{
    const QStringList elements = handElements();
    for (const QString &element : elements) {
        if (boundsOnWidget(element).contains(place))
            return element;
    }
    return {};
}

double PanelWidget::placeOn(const QString &element, const QPoint &place) const
{
    const QRectF bounds = boundsOnWidget(element);
    return qBound(0.0, (place.x() - bounds.left()) / bounds.width(), 1.0);
}

void PanelWidget::mousePressEvent(QMouseEvent *event)
{
    const QString element = elementAt(event->pos());
    if (event->button() != Qt::LeftButton || element.isEmpty())
        return;
    if (element == QLatin1String("faults")) {
        showFaultMenu(event->globalPos());
        return;
    }
    const QString command = commandFor(element, placeOn(element, event->pos()), m_instrument);
    if (isDragged(element)) {
        m_dragged = element;
        m_dragCommand = command;
    }
    run(command);
}

void PanelWidget::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_dragged.isEmpty()) {
        const QString command =
            commandFor(m_dragged, placeOn(m_dragged, event->pos()), m_instrument);
        if (command == m_dragCommand)
            return;
        m_dragCommand = command;
        // Only the last position of a drag counts.
        if (!m_commands.isEmpty())
            m_commands.removeLast();
        run(command);
        return;
    }
    const QString element = elementAt(event->pos());
    const QString command = commandFor(element, placeOn(element, event->pos()), m_instrument);
    const bool isOfUse = !command.isEmpty() || element == QLatin1String("faults");
    setCursor(!isOfUse             ? Qt::ArrowCursor
              : isDragged(element) ? Qt::SizeHorCursor
                                   : Qt::PointingHandCursor);
    setToolTip(command.isEmpty() ? QString() : asTyped(command));
}

void PanelWidget::mouseReleaseEvent(QMouseEvent *)
{
    m_dragged.clear();
}

void PanelWidget::run(const QString &command)
{
    if (command.isEmpty())
        return;
    m_commands << command;
    startNext();
}

void PanelWidget::startNext()
{
    if (m_commands.isEmpty() || m_hand)
        return;
    const QString command = m_commands.takeFirst();
    const QString typed = asTyped(command);
    m_instrument.command = typed;
    m_instrument.complaint.clear();
    m_hand = new QProcess(this);
    m_hand->setStandardOutputFile(QProcess::nullDevice());
    QProcess *hand = m_hand;
    QObject::connect(
        hand, static_cast<void (QProcess::*)(int, QProcess::ExitStatus)>(&QProcess::finished), this,
        [this, hand, typed](int status) { takeEnd(hand, typed, status); });
    hand->start(QStringLiteral("sh"), {QStringLiteral("-c"), command});
    QTimer::singleShot(handTimeoutMs, hand, [this] {
        m_hand = nullptr;
        m_instrument.complaint = QStringLiteral("still runs");
        startNext();
    });
    look();
    Q_EMIT commandRan(typed);
}

void PanelWidget::takeEnd(QProcess *hand, const QString &typed, int status)
{
    // This also cancels the timeout of the process.
    hand->deleteLater();
    // Ignore the result of an earlier command: the panel shows only the last command's result.
    if (typed == m_instrument.command) {
        const QByteArray complaint = hand->readAllStandardError().trimmed();
        m_instrument.complaint = status == 0 ? QString()
                                 : complaint.isEmpty()
                                     ? QStringLiteral("ended with status %1").arg(status)
                                     : QString::fromUtf8(complaint.split('\n').first());
    }
    if (hand == m_hand)
        m_hand = nullptr;
    look();
    startNext();
}

void PanelWidget::showFaultMenu(const QPoint &place)
{
    m_faultMenu->clear();
    m_faultMenu->addAction(QStringLiteral("Heal everything"), this,
                           [this] { run(healAllCommand()); });
    m_faultMenu->addSeparator();
    QMenu *ofClass = nullptr;
    const QStringList operations = faultOperations();
    for (const QString &operation : operations) {
        const QString name = operation.section(QLatin1Char('.'), 0, 0);
        if (!ofClass || ofClass->title() != name)
            ofClass = m_faultMenu->addMenu(name);
        QMenu *choices = ofClass->addMenu(operation.section(QLatin1Char('.'), 1));
        for (const FaultChoice &choice : faultChoices) {
            const QString words = QString::fromLatin1(choice.words);
            choices->addAction(QString::fromLatin1(choice.title), this,
                               [this, operation, words] { run(faultCommand(operation, words)); });
        }
        choices->addSeparator();
        const QString file = QStringLiteral("faults/") + operation;
        choices
            ->addAction(QStringLiteral("heal"), this,
                        [this, operation] { run(healCommand(operation)); })
            ->setEnabled(m_instrument.board.contains(file));
    }
    m_faultMenu->popup(place);
}
