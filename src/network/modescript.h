#ifndef MODESCRIPT_H
#define MODESCRIPT_H

#include <QObject>
#include <QProcess>

/** Runs the mode script: the image's script that switches the mode of the Wi-Fi module. */
class ModeScript : public QObject
{
    Q_OBJECT

public:
    ModeScript();

    /**
     * Starts the script.
     *
     * @param mode "0" Ethernet only, "1" Wi-Fi station, "2" access point
     * @return true if the script has started; false if its previous run has not ended, or if it has
     *         not started within 1000 ms
     */
    bool start(const QString &mode);

Q_SIGNALS:
    /** The script has ended, with any status. */
    void ended();

private:
    QProcess m_process;
};

#endif
