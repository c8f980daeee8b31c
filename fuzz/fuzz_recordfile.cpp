#include "recordfile.h"
#include "require.h"

#include <sanitizer/lsan_interface.h>

namespace
{
/** Ignores leaks: Qt 5.15's JSON parser leaks memory if the document is invalid. */
bool readWithoutLeakCheck(const QByteArray &content, Records &records, QString &complaint)
{
    __lsan_disable();
    const bool isRead = readRecords(content, records, complaint);
    __lsan_enable();
    return isRead;
}
} // namespace

/** The file from which kyboardctl restores both identification records. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray content(reinterpret_cast<const char *>(data), int(size));
    Records records;
    QString complaint;
    if (!readWithoutLeakCheck(content, records, complaint)) {
        require(!complaint.isEmpty(), "a rejected file has a complaint");
        return 0;
    }
    require(records.instrument.size() == 12 && records.measure.size() == 4, "a record is complete");
    records.instrument.insert(QStringLiteral("CRC"), true);
    records.measure.insert(QStringLiteral("CRC"), true);
    const QByteArray again = writeRecords(records, complaint);
    Records same;
    require(readRecords(again, same, complaint), "restored records can be copied again");
    records.instrument.remove(QStringLiteral("CRC"));
    records.measure.remove(QStringLiteral("CRC"));
    require(same.instrument == records.instrument && same.measure == records.measure,
            "a copy of a copy is the same");
    return 0;
}
