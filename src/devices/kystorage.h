#ifndef KYSTORAGE_H
#define KYSTORAGE_H

#include "introspection/Storage.h"
#include "kyfaccess.h"
#include "kysdcardthread.h"

#include <QDBusAbstractAdaptor>
#include <QString>

class QDBusMessage;

/**
 * The removable storage: announces the SD card and the USB key coming and going, tells whether
 * they are mounted, and unmounts them. Mounting is the system's job.
 *
 * The devices are called "SD" and "USB", compared exactly. Insertions and removals are no longer
 * announced once the kernel's events cannot be received.
 */
class KyStorage : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.BoardManager.Storage")
    Q_CLASSINFO("D-Bus Introspection", INTROSPECTION_STORAGE)

public:
    /** Starts listening. */
    explicit KyStorage(QObject *parent);

    /** Waits for the listener, which ends at the next event of any device. */
    ~KyStorage() override;

public Q_SLOTS:
    /**
     * Unmounts @p device. Whether or not that succeeds, the device is announced as unmounted and
     * absent.
     *
     * Error::m_write when @p device is unknown, which announces nothing, or cannot be unmounted.
     */
    void umount(QString device, const QDBusMessage &message);

    /** Whether @p device is mounted; false for an unknown one. */
    bool isMounted(QString device);

Q_SIGNALS:
    /** Sent when an SD card comes or goes, which counts as its being mounted or not, and after an
     *  attempt to unmount a device. */
    void deviceChangedMountState(QString device, bool isMounted);

    /** The SD card came or, with @p present false, went. */
    void sdcardPresence(bool present);

    /** The same for the USB key. */
    void usbKeyPresence(bool present);

private:
    void sdCardSlot(bool present);
    void usbKeySlot(bool present);

    KyFaccess m_faccess;
    /** Where the system mounts the devices; nothing here needs to know, so far. */
    const QString m_mountRoot;
    KySdcardThread m_listener;
};

#endif
