#include "crc16.h"
#include "files.h"
#include "instrumentrecord.h"
#include "kyals.h"
#include "kybatmonitor.h"
#include "kyboardrev.h"
#include "kyeeprom.h"
#include "kyfaccess.h"
#include "kyleds.h"
#include "kytemperature.h"
#include "measurerecord.h"

#include <QDBusMetaType>
#include <QTest>

#include <cstddef>
#include <cstdio>

/**
 * Everything that must be the same on every machine: the sizes of the hardware libraries' types,
 * the types on the bus, and the bytes of the records. Every machine compares them with layout.txt.
 */
class TestLayout : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyMachineHasTheSameLayout();

private:
    QStringList m_lines;

    template <typename Type>
    void addSize(const char *name);
    template <typename Type>
    void addBusType(const char *name);
    void addBytes(const char *name, const QByteArray &bytes);
};

template <typename Type>
void TestLayout::addSize(const char *name)
{
    m_lines << QStringLiteral("size of %1: %2, aligned to %3")
                   .arg(QLatin1String(name), QString::number(sizeof(Type)),
                        QString::number(alignof(Type)));
}

template <typename Type>
void TestLayout::addBusType(const char *name)
{
    m_lines << QStringLiteral("%1 on the bus: %2")
                   .arg(QLatin1String(name),
                        QLatin1String(QDBusMetaType::typeToSignature(qMetaTypeId<Type>())));
}

void TestLayout::addBytes(const char *name, const QByteArray &bytes)
{
    m_lines << QStringLiteral("%1: %2").arg(QLatin1String(name),
                                            QString::fromLatin1(bytes.toHex()));
}

void TestLayout::everyMachineHasTheSameLayout()
{
    addSize<bool>("bool");
    addSize<short>("short");
    addSize<int>("int");
    addSize<float>("float");
    addSize<e_brand>("e_brand");
    addSize<e_model>("e_model");
    addSize<e_device>("e_device");
    addSize<e_eeprom>("e_eeprom");
    addSize<e_storagedevice>("e_storagedevice");
    addSize<e_leds>("e_leds");
    addSize<e_led_state>("e_led_state");
    addSize<e_tempdev>("e_tempdev");
    addSize<cmeter_data>("cmeter_data");
    m_lines << QStringLiteral("cmeter_data: flag at %1, charge at %2, voltage at %3")
                   .arg(QString::number(offsetof(cmeter_data, flag)),
                        QString::number(offsetof(cmeter_data, charge)),
                        QString::number(offsetof(cmeter_data, voltage)));

    addBusType<bool>("bool");
    addBusType<int>("int");
    addBusType<uint>("uint");
    addBusType<ushort>("ushort");
    addBusType<uchar>("uchar");
    addBusType<double>("double");
    addBusType<qlonglong>("qlonglong");
    addBusType<QString>("QString");
    addBusType<QByteArray>("QByteArray");
    addBusType<QStringList>("QStringList");
    addBusType<QList<uint>>("QList<uint>");
    addBusType<QVariantMap>("QVariantMap");

    // Bytes that are negative as a signed char, and numbers with four different bytes.
    const QVariantMap instrument{
        {"Subsidiary", 0xF1},
        {"Fabrication", -2},
        {"Brand", 3},
        {"Type", 0x1FF},
        {"Model", "fedc"},
        {"SerialNumber", QByteArray("\x80\xFFz", 3)},
        {"WarrantyNumber", QByteArray("\xE9W")},
        {"TroubleshootingTag", 0x80},
        {"RelaunchTag", 0x7F},
        {"FirstPassTag", 0xFF},
        {"IrdInstrumentPassword", QString::fromUtf8("\xC3\xA9t\xC3\xA9")},
        {"IrdSessionPassword", QByteArray("\xC3\xA9")},
    };
    addBytes("instrument record", encodeInstrumentRecord(instrument));
    QVector<quint32> coefficients;
    for (quint32 number = 0; number < 296; ++number)
        coefficients << 0x89ABCDEFU + number * 0x01020304U;
    const QVariantMap measure{
        {"AdjustementSite", 0x98765432U},
        {"AdjustementDate", 0xFEDCBA98U},
        {"NextAdjustementDate", 0x01234567U},
    };
    addBytes("measure record", encodeMeasureRecord(measure, coefficients));
    QByteArray everyByte;
    for (int byte = 0; byte < 256; ++byte)
        everyByte += static_cast<char>(byte);
    m_lines << QStringLiteral("crc16 of every byte: %1").arg(crc16(everyByte), 4, 16);
    const QVariantMap decoded = decodeInstrumentRecord(encodeInstrumentRecord(instrument));
    for (auto field = decoded.begin(); field != decoded.end(); ++field) {
        m_lines << QStringLiteral("%1: %2 %3")
                       .arg(field.key(), QLatin1String(field.value().typeName()),
                            field.value().userType() == QMetaType::QByteArray
                                ? QString::fromLatin1(field.value().toByteArray().toHex())
                                : field.value().toString());
    }

    const QStringList expected =
        QString::fromUtf8(readFile(QStringLiteral(EXPECTED))).split('\n', Qt::SkipEmptyParts);
    if (m_lines != expected)
        std::puts(qPrintable(m_lines.join('\n')));
    QCOMPARE(m_lines, expected);
}

QTEST_APPLESS_MAIN(TestLayout)
#include "test_layout.moc"
