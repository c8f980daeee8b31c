#ifndef VIRTUALSCREEN_H
#define VIRTUALSCREEN_H

#include <QProcess>
#include <QString>

/** An X server without a screen, for one test. */
class VirtualScreen
{
public:
    ~VirtualScreen();

    /**
     * Starts it and waits until it accepts connections; returns false on failure.
     *
     * @param keyFile clients need the key in this file; empty: every program may connect
     */
    bool start(const QString &keyFile = QString());

    /** The value for DISPLAY, for example ":3". */
    QString name() const { return m_name; }

    /** Returns the content of a key file that opens every X server with the same key. */
    static QByteArray newKey();

private:
    QProcess m_server;
    QString m_name;
};

#endif
