#include "samplerecords.h"

QVariantMap instrumentRecord()
{
    return {
        {"Subsidiary", 1},
        {"Fabrication", 2},
        {"Brand", 3},
        {"Type", 4},
        {"Model", "8345"},
        {"SerialNumber", QByteArray("12345678")},
        {"WarrantyNumber", QByteArray("123456789")},
        {"TroubleshootingTag", 5},
        {"RelaunchTag", 6},
        {"FirstPassTag", 7},
        {"IrdInstrumentPassword", QByteArray(30, 'i')},
        {"IrdSessionPassword", QByteArray(16, 's')},
    };
}

QVariantMap measureRecord()
{
    QVariantMap map{{"AdjustementSite", 500},
                    {"AdjustementDate", 4000000000U},
                    {"NextAdjustementDate", 4000000001U}};
    QVariantList coefficients;
    for (uint index = 0; index < 296; ++index)
        coefficients << 0xFFFFFFFFU - index;
    map.insert("AdjustementCoefficients", coefficients);
    return map;
}
