#include "trafficlog.h"

#include <QComboBox>
#include <QFile>
#include <QFileDialog>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QJsonDocument>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace
{
constexpr int mostEntries = 5000;
/** How often the log checks whether the monitor still runs. */
constexpr int retryMs = 200;

QString colourOf(TrafficLine::Kind kind)
{
    switch (kind) {
    case TrafficLine::Signal:
        return QStringLiteral("#1c7f86");
    case TrafficLine::Error:
        return QStringLiteral("#b3392f");
    case TrafficLine::Reply:
        return QStringLiteral("#6c7a87");
    case TrafficLine::Call:
        break;
    }
    return QStringLiteral("#26323d");
}
} // namespace

TrafficLog::TrafficLog() : m_interfaces(new QComboBox), m_lines(new QPlainTextEdit)
{
    m_interfaces->addItem(QStringLiteral("All interfaces"), QString());
    m_interfaces->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    m_lines->setReadOnly(true);
    m_lines->setMaximumBlockCount(mostEntries);
    m_lines->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_lines->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    auto save = new QPushButton(QStringLiteral("Save \u2026"));
    auto clear = new QPushButton(QStringLiteral("Clear"));
    auto head = new QHBoxLayout;
    head->addWidget(new QLabel(QStringLiteral("D-Bus")));
    head->addWidget(m_interfaces, 1);
    head->addWidget(clear);
    head->addWidget(save);
    auto layout = new QVBoxLayout(this);
    layout->addLayout(head);
    layout->addWidget(m_lines);
    QObject::connect(m_interfaces,
                     static_cast<void (QComboBox::*)(int)>(&QComboBox::currentIndexChanged), this,
                     &TrafficLog::fillAgain);
    QObject::connect(clear, &QPushButton::clicked, this, [this] {
        m_entries.clear();
        fillAgain();
    });
    QObject::connect(save, &QPushButton::clicked, this, &TrafficLog::askWhereToSave);
    QObject::connect(&m_monitor, &QProcess::readyReadStandardOutput, this, &TrafficLog::read);
    m_monitor.setStandardErrorFile(QProcess::nullDevice());
    // The monitor ends when the bus ends: start it again.
    m_retry.setInterval(retryMs);
    QObject::connect(&m_retry, &QTimer::timeout, this, &TrafficLog::start);
    m_retry.start();
    start();
}

TrafficLog::~TrafficLog()
{
    m_monitor.disconnect();
    m_monitor.kill();
    m_monitor.waitForFinished();
}

void TrafficLog::start()
{
    if (m_monitor.state() != QProcess::NotRunning)
        return;
    m_unfinished.clear();
    m_monitor.start(QStringLiteral("busctl"),
                    {QStringLiteral("--system"), QStringLiteral("--json=short"),
                     QStringLiteral("monitor"),
                     QStringLiteral("com.orvendis.Strandel.BoardManager")});
}

void TrafficLog::read()
{
    m_unfinished += m_monitor.readAllStandardOutput();
    for (int end = m_unfinished.indexOf('\n'); end >= 0; end = m_unfinished.indexOf('\n')) {
        const QByteArray message = m_unfinished.left(end);
        m_unfinished.remove(0, end + 1);
        TrafficLine line;
        if (m_traffic.take(QJsonDocument::fromJson(message).object(), m_ignored, line))
            add({line.interface, line.text(), line.kind, false});
    }
}

void TrafficLog::note(const QString &text)
{
    add({QString(), QStringLiteral("$ ") + text, TrafficLine::Call, true});
}

void TrafficLog::add(const Entry &entry)
{
    m_entries << entry;
    if (m_entries.size() > mostEntries)
        m_entries.removeFirst();
    if (!entry.isNote && m_interfaces->findData(entry.interface) < 0)
        m_interfaces->addItem(entry.interface, entry.interface);
    show(entry);
}

void TrafficLog::show(const Entry &entry)
{
    const QString wanted = m_interfaces->currentData().toString();
    if (!wanted.isEmpty() && !entry.isNote && entry.interface != wanted)
        return;
    const QString text =
        entry.text.toHtmlEscaped().replace(QLatin1Char(' '), QStringLiteral("&nbsp;"));
    m_lines->appendHtml(
        entry.isNote
            ? QStringLiteral("<b style='color:#8a5a00'>%1</b>").arg(text)
            : QStringLiteral("<span style='color:%1'>%2</span>").arg(colourOf(entry.kind), text));
}

void TrafficLog::fillAgain()
{
    m_lines->clear();
    for (const Entry &entry : qAsConst(m_entries))
        show(entry);
}

void TrafficLog::showInterface(const QString &name)
{
    m_interfaces->setCurrentIndex(std::max(0, m_interfaces->findData(name)));
}

QString TrafficLog::text() const
{
    return m_lines->toPlainText().replace(QChar::Nbsp, QLatin1Char(' '));
}

bool TrafficLog::save(const QString &file) const
{
    QFile target(file);
    return target.open(QIODevice::WriteOnly) && target.write(text().toUtf8() + '\n') >= 0 &&
           target.flush();
}

void TrafficLog::askWhereToSave()
{
    const QString file = QFileDialog::getSaveFileName(this, QStringLiteral("Save the log"),
                                                      QStringLiteral("bus.log"));
    if (!file.isEmpty() && !save(file))
        QMessageBox::warning(this, QStringLiteral("Save the log"),
                             QStringLiteral("%1 cannot be written.").arg(file));
}
