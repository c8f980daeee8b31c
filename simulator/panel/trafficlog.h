#ifndef TRAFFICLOG_H
#define TRAFFICLOG_H

#include "traffic.h"

#include <QProcess>
#include <QTimer>
#include <QVector>
#include <QWidget>

class QComboBox;
class QPlainTextEdit;

/** The daemon's signals, and the calls to it and from it, as they come. */
class TrafficLog : public QWidget
{
    Q_OBJECT

public:
    TrafficLog();
    ~TrafficLog() override;

    /** Leaves out the calls of the one with this name on the bus. */
    void setIgnored(const QString &name) { m_ignored = name; }

    /** Adds a line of our own, in between. */
    void note(const QString &text);

    /** What is shown, a line for each message. */
    QString text() const;

    /** Shows one interface alone; an empty name: all. */
    void showInterface(const QString &name);

    /** Writes what is shown to a file; false when it cannot. */
    bool save(const QString &file) const;

private:
    struct Entry {
        QString interface;
        QString text;
        TrafficLine::Kind kind;
        bool isNote;
    };

    void start();
    void read();
    void add(const Entry &entry);
    void show(const Entry &entry);
    void fillAgain();
    void askWhereToSave();

    QProcess m_monitor;
    QTimer m_retry;
    QByteArray m_unfinished;
    Traffic m_traffic;
    QString m_ignored;
    QVector<Entry> m_entries;
    QComboBox *m_interfaces;
    QPlainTextEdit *m_lines;
};

#endif
