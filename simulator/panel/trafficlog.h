#ifndef TRAFFICLOG_H
#define TRAFFICLOG_H

#include "traffic.h"

#include <QProcess>
#include <QTimer>
#include <QVector>
#include <QWidget>

class QComboBox;
class QPlainTextEdit;

/** Shows the daemon's signals, and the calls to and from the daemon, as they happen. */
class TrafficLog : public QWidget
{
    Q_OBJECT

public:
    TrafficLog();
    ~TrafficLog() override;

    /** Leaves out the calls of the connection with this bus name. */
    void setIgnored(const QString &name) { m_ignored = name; }

    /** Inserts a line that is not a message. */
    void note(const QString &text);

    /** The visible text, a line for each message. */
    QString text() const;

    /** Shows only one interface; an empty name means all. */
    void showInterface(const QString &name);

    /** Saves the visible text to a file; returns false on failure. */
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
