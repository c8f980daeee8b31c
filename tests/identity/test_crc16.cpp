#include "crc16.h"

#include <QRandomGenerator>
#include <QTest>

/** The CRC of the identification records. */
class TestCrc16 : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void checkValue();
    void checksumOfNoDataIsZero();
    void checksumOfZerosIsZero();
    void checksumOfEverySingleByteFollowsTheDefinition();
    void checksumOfRandomDataFollowsTheDefinition();
    void everyFlippedBitChangesTheChecksum();
};

namespace
{
/** Bit by bit, directly from the definition of the polynomial. */
quint16 crcByDefinition(const QByteArray &data)
{
    unsigned int crc = 0;
    for (const char byte : data) {
        for (int bit = 0; bit < 8; ++bit) {
            const unsigned int isSet = (crc ^ (static_cast<uchar>(byte) >> bit)) & 1U;
            crc = (crc >> 1) ^ (isSet * 0xA001U);
        }
    }
    return static_cast<quint16>(crc);
}

QByteArray randomBytes(QRandomGenerator &random, int size)
{
    QByteArray bytes;
    for (int index = 0; index < size; ++index)
        bytes += static_cast<char>(random.bounded(256));
    return bytes;
}
} // namespace

void TestCrc16::checkValue()
{
    QCOMPARE(crc16("123456789"), quint16(0xBB3D));
}

void TestCrc16::checksumOfNoDataIsZero()
{
    QCOMPARE(crc16(QByteArray()), quint16(0));
}

void TestCrc16::checksumOfZerosIsZero()
{
    for (const int size : {1, 2, 72, 1194, 100000})
        QCOMPARE(crc16(QByteArray(size, '\0')), quint16(0));
}

void TestCrc16::checksumOfEverySingleByteFollowsTheDefinition()
{
    for (int byte = 0; byte < 256; ++byte) {
        const QByteArray data(1, static_cast<char>(byte));
        QCOMPARE(crc16(data), crcByDefinition(data));
    }
}

void TestCrc16::checksumOfRandomDataFollowsTheDefinition()
{
    QRandomGenerator random(16);
    for (int round = 0; round < 500; ++round) {
        const QByteArray data = randomBytes(random, static_cast<int>(random.bounded(1500)));
        QCOMPARE(crc16(data), crcByDefinition(data));
    }
}

void TestCrc16::everyFlippedBitChangesTheChecksum()
{
    QRandomGenerator random(8005);
    QByteArray data = randomBytes(random, 72);
    const quint16 crc = crc16(data);
    for (int bit = 0; bit < data.size() * 8; ++bit) {
        const char mask = static_cast<char>(1 << (bit % 8));
        data[bit / 8] = static_cast<char>(data.at(bit / 8) ^ mask);
        QVERIFY(crc16(data) != crc);
        data[bit / 8] = static_cast<char>(data.at(bit / 8) ^ mask);
    }
}

QTEST_GUILESS_MAIN(TestCrc16)
#include "test_crc16.moc"
