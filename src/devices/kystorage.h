#ifndef KYSTORAGE_H
#define KYSTORAGE_H

#include "introspection/Storage.h"
#include "kyfaccess.h"
#include "kysdcardthread.h"

#include <QDBusAbstractAdaptor>
#include <QString>

class QDBusMessage;

/**
 * The removable storage: announces when SD card and USB key are inserted and removed, reports
 * whether they are mounted, and unmounts them. Mounting is the system's task.
 *
 * The devices are called "SD" and "USB", compared exactly. Without the kernel's events, insertions
 * and removals are not announced.
 */
class KyStorage : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.BoardManager.Storage")
    Q_CLASSINFO("D-Bus Introspection", INTROSPECTION_STORAGE)

public:
    /** Starts to listen for insertions and removals. */
    explicit KyStorage(QObject *parent);

    /** Waits for the listener, which ends at the next event of any device. */
    ~KyStorage() override;

public Q_SLOTS:
    /**
     * Unmounts @p device. Announces the device as unmounted and absent, even if it cannot be
     * unmounted.
     *
     * Error::m_write if @p device cannot be unmounted. Error::m_write, without an announcement, if
     * @p device is unknown.
     */
    void umount(QString device, const QDBusMessage &message);

    /** Returns true if @p device is mounted; false for an unknown device. */
    bool isMounted(QString device);

Q_SIGNALS:
    /**
     * Sent when an SD card is inserted (an inserted card counts as mounted) or removed, and after
     * an attempt to unmount a device.
     */
    void deviceChangedMountState(QString device, bool isMounted);

    /** The SD card was inserted or, if @p present is false, removed. */
    void sdcardPresence(bool present);

    /** The same for the USB key. */
    void usbKeyPresence(bool present);

private:
    void sdCardSlot(bool present);
    void usbKeySlot(bool present);

    KyFaccess m_faccess;
    /** The directory in which the system mounts the devices; not used so far. */
    const QString m_mountRoot;
    KySdcardThread m_listener;
};

#endif
