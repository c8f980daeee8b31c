#ifndef KYSDCARDTHREAD_H
#define KYSDCARDTHREAD_H

#include <QThread>

#include <atomic>

/**
 * Listens to the kernel's device events for the SD card and the USB key.
 *
 * The thread shares only its stop flag and its signals with other threads. It ends silently when
 * the kernel's events cannot be received, and is never restarted.
 */
class KySdcardThread : public QThread
{
    Q_OBJECT

public:
    KySdcardThread();

public Q_SLOTS:
    /** The thread's function. Do not call it directly: call start(). */
    void run() override;

    /** Ends the thread at the next event of any device. */
    void stop();

Q_SIGNALS:
    /** The SD card was inserted or, if @p present is false, removed. Emitted in the thread. */
    void sdcardEvent(bool present);

    /** The same for the USB key. */
    void usbKeyEvent(bool present);

private:
    void listen(int descriptor);

    std::atomic<bool> m_stopRequested;
};

#endif
