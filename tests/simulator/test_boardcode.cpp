#include "fault.h"
#include "records.h"
#include "thresholdcode.h"

#include <QTest>

#include <cmath>
#include <limits>

/** The functions of the simulated board that use no files: codes, records, the words of faults. */
class TestBoardCode : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lightHasItsCode_data();
    void lightHasItsCode();
    void moreLightNeverHasALowerCode();
    void theLeastLightOfACodeHasThatCode();
    void aCodeIsAtMostASixteenthWide();

    void theChecksumHasItsCheckValue();
    void theInstrumentRecordIsValid();
    void theMeasureRecordIsValid();

    void faultsAreWords_data();
    void faultsAreWords();
    void aFaultIsWrittenAsItIsRead_data();
    void aFaultIsWrittenAsItIsRead();
};

void TestBoardCode::lightHasItsCode_data()
{
    QTest::addColumn<float>("lux");
    QTest::addColumn<int>("code");

    QTest::newRow("dark") << 0.0F << 0;
    QTest::newRow("less than a count") << 0.2F << 0;
    QTest::newRow("one count") << 0.25F << 1;
    QTest::newRow("last of exponent 0") << 3.75F << 0x0F;
    QTest::newRow("first of exponent 1") << 4.0F << 0x10;
    QTest::newRow("last of exponent 1") << 7.99F << 0x1F;
    QTest::newRow("first of exponent 2") << 8.0F << 0x20;
    QTest::newRow("10 lux") << 10.0F << 0x24;
    QTest::newRow("25 lux") << 25.0F << 0x39;
    QTest::newRow("100 lux") << 100.0F << 0x59;
    QTest::newRow("175 lux") << 175.0F << 0x65;
    QTest::newRow("10000 lux") << 10000.0F << 0xC3;
    QTest::newRow("first of the last code") << 126976.0F << 0xFF;
    QTest::newRow("beyond the last code") << 1e30F << 0xFF;
    QTest::newRow("infinite") << std::numeric_limits<float>::infinity() << 0xFF;
    QTest::newRow("negative") << -1.0F << 0;
    QTest::newRow("no number") << std::numeric_limits<float>::quiet_NaN() << 0;
}

void TestBoardCode::lightHasItsCode()
{
    QFETCH(float, lux);
    QFETCH(int, code);

    QCOMPARE(int(board::thresholdCode(lux)), code);
}

void TestBoardCode::moreLightNeverHasALowerCode()
{
    int last = 0;
    // Steps of 0.01 lux up to 1000 lux, then of 1 lux.
    for (int step = 0; step <= 239000; ++step) {
        const float lux = step < 100000 ? float(step) / 100 : float(step - 99000);
        const int code = board::thresholdCode(lux);
        QVERIFY2(code >= last, qPrintable(QString::number(double(lux))));
        last = code;
    }
    QCOMPARE(last, 255);
}

void TestBoardCode::theLeastLightOfACodeHasThatCode()
{
    for (int code = 1; code < 256; ++code) {
        const float least = board::leastLux(static_cast<unsigned char>(code));
        QCOMPARE(int(board::thresholdCode(least)), code);
        QCOMPARE(int(board::thresholdCode(std::nextafter(least, 0.0F))), code - 1);
    }
}

void TestBoardCode::aCodeIsAtMostASixteenthWide()
{
    for (int code = 16; code < 255; ++code) {
        const float least = board::leastLux(static_cast<unsigned char>(code));
        const float next = board::leastLux(static_cast<unsigned char>(code + 1));
        QVERIFY2(next - least <= least / 16, qPrintable(QString::number(code)));
    }
}

void TestBoardCode::theChecksumHasItsCheckValue()
{
    QCOMPARE(int(board::crc16("123456789")), 0xBB3D);
    QCOMPARE(int(board::crc16(std::string(72, '\0'))), 0);
}

void TestBoardCode::theInstrumentRecordIsValid()
{
    const std::string record = board::instrumentRecord();

    QCOMPARE(int(record.size()), 74);
    // The checksum of data followed by its own checksum, low byte first, is zero.
    QCOMPARE(int(board::crc16(record.substr(2) + record[1] + record[0])), 0);
    QCOMPARE(record.substr(6, 2), std::string("\x83\x45"));
    QCOMPARE(record.substr(8, 8), std::string("STR00042"));
    QCOMPARE(record.substr(16, 9), std::string("W-0004217"));
    QCOMPARE(record.substr(28, 10), std::string("instrument"));
    QCOMPARE(record.substr(58, 7), std::string("session"));
}

void TestBoardCode::theMeasureRecordIsValid()
{
    const std::string record = board::measureRecord();

    QCOMPARE(int(record.size()), 12 + 4 * 296);
    QCOMPARE(int(board::crc16(record.substr(2) + record[1] + record[0])), 0);
}

void TestBoardCode::faultsAreWords_data()
{
    using board::Fault;
    QTest::addColumn<QString>("words");
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("delay");
    QTest::addColumn<int>("calls");

    QTest::newRow("always") << "always" << int(Fault::Failure) << 0 << -1;
    QTest::newRow("three calls") << "3" << int(Fault::Failure) << 0 << 3;
    QTest::newRow("none left") << "0" << int(Fault::Failure) << 0 << 0;
    QTest::newRow("slow") << "delay 200" << int(Fault::None) << 200 << -1;
    QTest::newRow("slow failure") << "always delay 200" << int(Fault::Failure) << 200 << -1;
    QTest::newRow("two slow failures") << "2 delay 5" << int(Fault::Failure) << 5 << 2;
    QTest::newRow("another order") << "delay 5 2" << int(Fault::Failure) << 5 << 2;
    QTest::newRow("garbage") << "garbage" << int(Fault::Garbage) << 0 << -1;
    QTest::newRow("garbage twice") << "garbage 2" << int(Fault::Garbage) << 0 << 2;
    QTest::newRow("slow garbage") << "garbage delay 7" << int(Fault::Garbage) << 7 << -1;
    QTest::newRow("later") << "2 after 5" << int(Fault::Failure) << 0 << 2;
    QTest::newRow("held") << "hold" << int(Fault::None) << 0 << -1;
    QTest::newRow("held garbage") << "hold garbage" << int(Fault::Garbage) << 0 << -1;
    QTest::newRow("empty") << "" << int(Fault::Failure) << 0 << -1;
    QTest::newRow("unknown word") << "sometimes" << int(Fault::Failure) << 0 << -1;
    QTest::newRow("negative") << "-3" << int(Fault::Failure) << 0 << -1;
    QTest::newRow("too many") << "99999999999999999999" << int(Fault::Failure) << 0 << -1;
    QTest::newRow("delay without a number") << "2 delay" << int(Fault::Failure) << 0 << -1;
    QTest::newRow("after without a number") << "2 after" << int(Fault::Failure) << 0 << -1;
    QTest::newRow("delay of a word") << "2 delay long" << int(Fault::Failure) << 0 << -1;
    QTest::newRow("delay of a day") << "delay 86400000" << int(Fault::Failure) << 0 << -1;
}

void TestBoardCode::faultsAreWords()
{
    QFETCH(QString, words);
    QFETCH(int, kind);
    QFETCH(int, delay);
    QFETCH(int, calls);

    const board::FaultWords asked = board::parseFault(words.toStdString());
    QCOMPARE(int(asked.fault.kind), kind);
    QCOMPARE(int(asked.fault.delay), delay);
    QCOMPARE(int(asked.calls), calls);
}

void TestBoardCode::aFaultIsWrittenAsItIsRead_data()
{
    QTest::addColumn<QString>("words");

    for (const char *words : {"2", "2 delay 5", "2 garbage", "2 garbage delay 5", "always after 3",
                              "1 hold after 3", "garbage", "delay 5", "hold"})
        QTest::newRow(words) << QString::fromLatin1(words);
}

void TestBoardCode::aFaultIsWrittenAsItIsRead()
{
    QFETCH(QString, words);

    QCOMPARE(QString::fromStdString(board::faultText(board::parseFault(words.toStdString()))),
             words);
}

QTEST_APPLESS_MAIN(TestBoardCode)
#include "test_boardcode.moc"
