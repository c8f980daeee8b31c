#include "uevent.h"

#include <QTest>

#include <string>

/** The meaning of the kernel's device events for the storage devices. */
class TestUevent : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aHeaderHasItsMeaning_data();
    void aHeaderHasItsMeaning();
    void bytesAfterTheHeaderAreIgnored_data();
    void bytesAfterTheHeaderAreIgnored();
    void aHeaderNeedsNoTerminator();
    void aTruncatedMessageMeansNothing();
    void aHeaderMayBeAsLongAsTheBuffer();
    void anyBytesAreParsedWithoutHarm();
};

namespace
{
const QByteArray path = "/devices/platform/soc/block/mmcblk0/";

const char *nameOf(StorageEvent event)
{
    switch (event) {
    case StorageEvent::None:
        return "none";
    case StorageEvent::SdCardInserted:
        return "SD card inserted";
    case StorageEvent::SdCardRemoved:
        return "SD card removed";
    case StorageEvent::UsbKeyInserted:
        return "USB key inserted";
    case StorageEvent::UsbKeyRemoved:
        return "USB key removed";
    }
    return "?";
}

QString meaningOf(const QByteArray &message)
{
    return nameOf(storageEvent({message.constData(), static_cast<size_t>(message.size())}));
}

void addRow(const char *name, const QByteArray &message, StorageEvent event)
{
    QTest::newRow(name) << message << QString::fromLatin1(nameOf(event));
}
} // namespace

void TestUevent::aHeaderHasItsMeaning_data()
{
    QTest::addColumn<QByteArray>("header");
    QTest::addColumn<QString>("meaning");

    addRow("card in", "add@" + path + "mmcblk0p1", StorageEvent::SdCardInserted);
    addRow("card out", "remove@" + path + "mmcblk0p1", StorageEvent::SdCardRemoved);
    addRow("key in", "add@/devices/usb/block/sda/sda1", StorageEvent::UsbKeyInserted);
    addRow("key out", "remove@/devices/usb/block/sda/sda1", StorageEvent::UsbKeyRemoved);

    addRow("second partition", "add@" + path + "mmcblk0p2", StorageEvent::None);
    addRow("whole card", "add@/devices/platform/soc/block/mmcblk0", StorageEvent::None);
    addRow("another card", "add@/devices/platform/soc/block/mmcblk1/mmcblk1p1", StorageEvent::None);
    addRow("another key", "add@/devices/usb/block/sdb/sdb1", StorageEvent::None);
    addRow("second partition of the key", "add@/devices/usb/block/sda/sda2", StorageEvent::None);
    addRow("whole key", "remove@/devices/usb/block/sda", StorageEvent::None);

    addRow("card changed", "change@" + path + "mmcblk0p1", StorageEvent::None);
    addRow("card bound", "bind@" + path + "mmcblk0p1", StorageEvent::None);
    addRow("key unbound", "unbind@/devices/usb/block/sda/sda1", StorageEvent::None);
    addRow("capitals", "ADD@" + path + "mmcblk0p1", StorageEvent::None);
    addRow("no action", path + "mmcblk0p1", StorageEvent::None);
    addRow("action later on", " add@" + path + "mmcblk0p1", StorageEvent::None);
    addRow("action without its sign", "add" + path + "mmcblk0p1", StorageEvent::None);

    addRow("name anywhere in the path", "add@/devices/mmcblk0p1/queues/rx-0",
           StorageEvent::SdCardInserted);
    addRow("longer name", "add@" + path + "mmcblk0p10", StorageEvent::SdCardInserted);
    addRow("only action and name", "add@sda1", StorageEvent::UsbKeyInserted);
    addRow("both names", "remove@/devices/sda1/mmcblk0p1", StorageEvent::SdCardRemoved);
    addRow("both names, neither action", "change@/devices/mmcblk0p1/sda1", StorageEvent::None);
}

void TestUevent::aHeaderHasItsMeaning()
{
    QFETCH(QByteArray, header);
    QFETCH(QString, meaning);
    QCOMPARE(meaningOf(header + '\0'), meaning);
}

void TestUevent::bytesAfterTheHeaderAreIgnored_data()
{
    QTest::addColumn<QByteArray>("message");
    QTest::addColumn<QString>("meaning");
    addRow("name after the header", QByteArray("add@/devices/usb\0DEVNAME=mmcblk0p1", 34),
           StorageEvent::None);
    addRow("action after the header", QByteArray("mmcblk0p1\0add@/devices/mmcblk0p1", 32),
           StorageEvent::None);
    addRow("another partition after the header", QByteArray("add@/block/sda1\0mmcblk0p1", 25),
           StorageEvent::UsbKeyInserted);
    addRow("header empty", QByteArray("\0add@/devices/mmcblk0p1", 23), StorageEvent::None);
    addRow("another subsystem's header", QByteArray("libudev\0add@/block/sda1", 23),
           StorageEvent::None);
}

void TestUevent::bytesAfterTheHeaderAreIgnored()
{
    QFETCH(QByteArray, message);
    QFETCH(QString, meaning);
    QCOMPARE(meaningOf(message), meaning);
}

void TestUevent::aHeaderNeedsNoTerminator()
{
    QCOMPARE(meaningOf("add@/block/sda1"), QStringLiteral("USB key inserted"));
    QCOMPARE(meaningOf("remove@/block/mmcblk0p1"), QStringLiteral("SD card removed"));
}

void TestUevent::aTruncatedMessageMeansNothing()
{
    const QByteArray whole = "add@/block/mmcblk0p1";
    for (int length = 0; length < whole.size(); ++length)
        QCOMPARE(meaningOf(whole.left(length)), QStringLiteral("none"));
    QCOMPARE(nameOf(storageEvent({})), "none");
}

void TestUevent::aHeaderMayBeAsLongAsTheBuffer()
{
    const QByteArray longPath = "remove@/" + QByteArray(4077, 'd');
    QCOMPARE(meaningOf(longPath + "/mmcblk0p1"), QStringLiteral("SD card removed"));
    QCOMPARE(meaningOf(longPath), QStringLiteral("none"));
}

void TestUevent::anyBytesAreParsedWithoutHarm()
{
    QByteArray all;
    for (int byte = 255; byte >= 0; --byte)
        all += static_cast<char>(byte);
    QCOMPARE(meaningOf(all), QStringLiteral("none"));
    QCOMPARE(meaningOf("add@" + all), QStringLiteral("none"));
    QCOMPARE(meaningOf("add@" + all.left(255) + "sda1"), QStringLiteral("USB key inserted"));
}

QTEST_APPLESS_MAIN(TestUevent)
#include "test_uevent.moc"
