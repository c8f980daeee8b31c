#ifndef VIRTUALSCREEN_H
#define VIRTUALSCREEN_H

#include <QProcess>
#include <QString>

/** An X server without a screen, which the test has to itself. */
class VirtualScreen
{
public:
    ~VirtualScreen();

    /**
     * Starts it and waits until it can be connected to; false when it could not.
     *
     * @param keyFile only who has the key in this file may connect; empty: every program
     */
    bool start(const QString &keyFile = QString());

    /** What DISPLAY has to be, as in ":3". */
    QString name() const { return m_name; }

private:
    QProcess m_server;
    QString m_name;
};

#endif
