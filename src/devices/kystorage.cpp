#include "kystorage.h"

#include "error.h"

namespace
{
struct Device {
    const char *name;
    e_storagedevice number;
    void (KyStorage::*presence)(bool);
};

const Device devices[] = {
    {"SD", STORAGE_SD, &KyStorage::sdcardPresence},
    {"USB", STORAGE_USB, &KyStorage::usbKeyPresence},
};

/** Returns null for an unknown name. */
const Device *deviceNamed(const QString &name)
{
    for (const Device &device : devices) {
        if (name == QLatin1String(device.name))
            return &device;
    }
    return nullptr;
}
} // namespace

KyStorage::KyStorage(QObject *parent)
    : QDBusAbstractAdaptor(parent), m_mountRoot(QStringLiteral("/tmp"))
{
    Q_EMIT deviceChangedMountState(QStringLiteral("SD"), m_faccess.isDeviceInserted(STORAGE_SD));
    connect(&m_listener, &KySdcardThread::sdcardEvent, this, &KyStorage::sdCardSlot,
            Qt::QueuedConnection);
    connect(&m_listener, &KySdcardThread::usbKeyEvent, this, &KyStorage::usbKeySlot,
            Qt::QueuedConnection);
    m_listener.start();
}

KyStorage::~KyStorage()
{
    m_listener.stop();
    m_listener.wait();
}

void KyStorage::umount(QString device, const QDBusMessage &message)
{
    const Device *known = deviceNamed(device);
    if (!known) {
        // Clients match on this error and on this wording.
        sendErrorReply(Error::Write, QStringLiteral("Unknowned device"), message);
        return;
    }
    if (m_faccess.unmountDevice(known->number) != 0)
        sendErrorReply(Error::Write, QStringLiteral("Umount failed"), message);
    // Sent even if the device could not be unmounted: clients rely on this.
    Q_EMIT deviceChangedMountState(device, false);
    Q_EMIT(this->*known->presence)(false);
}

bool KyStorage::isMounted(QString device)
{
    const Device *known = deviceNamed(device);
    return known && m_faccess.isMounted(known->number);
}

/** An inserted card counts as mounted: the system mounts it. */
void KyStorage::sdCardSlot(bool present)
{
    Q_EMIT deviceChangedMountState(QStringLiteral("SD"), present);
    Q_EMIT sdcardPresence(present);
}

/** Inserting or removing a USB key says nothing about whether it is mounted. */
void KyStorage::usbKeySlot(bool present)
{
    Q_EMIT usbKeyPresence(present);
}
