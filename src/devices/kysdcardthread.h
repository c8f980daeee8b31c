#ifndef KYSDCARDTHREAD_H
#define KYSDCARDTHREAD_H

#include <QThread>

#include <atomic>

/**
 * Listens to the kernel's device events for the SD card and the USB key.
 *
 * The thread shares nothing with the others but its stop flag and its signals. It ends when the
 * kernel's events cannot be received (any more), silently, and is never restarted.
 */
class KySdcardThread : public QThread
{
    Q_OBJECT

public:
    KySdcardThread();

public Q_SLOTS:
    /** The listener itself; not to be called, see start(). */
    void run() override;

    /** Ends the thread. It notices when the next event of any device arrives. */
    void stop();

Q_SIGNALS:
    /** The SD card was inserted or, with @p present false, removed. Sent from the thread. */
    void sdcardEvent(bool present);

    /** The same for the USB key. */
    void usbKeyEvent(bool present);

private:
    void listen(int descriptor);

    std::atomic<bool> m_stopRequested;
};

#endif
