#include "kyeeprom.h"

#include "boarddirectory.h"
#include "call.h"
#include "defaults.h"
#include "value.h"

#include <algorithm>
#include <cstring>

using namespace board;

namespace
{
constexpr char writeEnabledFile[] = "eeprom/write_enabled";

struct Eeprom {
    const char *file;
    std::size_t size;
};

std::optional<Eeprom> find(e_eeprom eeprom)
{
    switch (eeprom) {
    case EEPROM_INSTRUMENT:
        return Eeprom{"eeprom/instrument", instrumentEepromSize};
    case EEPROM_MESURE:
        return Eeprom{"eeprom/measure", measureEepromSize};
    }
    return {};
}

bool fits(const std::optional<Eeprom> &eeprom, unsigned int offset, unsigned int size)
{
    return eeprom && offset <= eeprom->size && size <= eeprom->size - offset;
}

std::optional<Bytes> readBytes(e_eeprom number, unsigned int offset, unsigned int size)
{
    const std::optional<Eeprom> eeprom = find(number);
    if (!fits(eeprom, offset, size))
        return {};
    const std::optional<std::string> image = readFile(eeprom->file, eeprom->size);
    if (!image || image->size() < std::size_t(offset) + size)
        return {};
    return Bytes{image->substr(offset, size)};
}

bool writeBytes(e_eeprom number, const std::string &bytes, unsigned int offset)
{
    const Lock lock;
    const std::optional<Eeprom> eeprom = find(number);
    if (!readFlag(writeEnabledFile).value_or(false) ||
        !fits(eeprom, offset, static_cast<unsigned int>(bytes.size())))
        return false;
    std::optional<std::string> image = readFile(eeprom->file, eeprom->size);
    if (!image)
        return false;
    // The file may be shorter than the EEPROM; the rest reads as erased.
    image->resize(std::max(image->size(), offset + bytes.size()), '\xFF');
    image->replace(offset, bytes.size(), bytes);
    return writeFile(eeprom->file, *image);
}

/** Returns the bytes to write; none if they are more than the largest EEPROM holds. */
Bytes given(const char *bytes, unsigned int size)
{
    return {bytes && size <= measureEepromSize ? std::string(bytes, size) : std::string()};
}
} // namespace

KyEeprom::KyEeprom() : m_handle(nullptr)
{
    createOnce();
}

KyEeprom::~KyEeprom() = default;

int KyEeprom::readEeprom(e_eeprom eeprom, char **buffer, unsigned int offset, unsigned int size)
{
    Call call("KyEeprom.readEeprom", eeprom, offset, size);
    const bool hasBuffer = buffer && *buffer;
    const Bytes nonsense{std::string(std::min<std::size_t>(size, measureEepromSize), '\x5A')};
    Bytes bytes;
    const int status = call.read(hasBuffer ? &bytes : nullptr, nonsense,
                                 [=] { return readBytes(eeprom, offset, size); });
    if (status == 0 && hasBuffer)
        std::memcpy(*buffer, bytes.content.data(), bytes.content.size());
    return status;
}

int KyEeprom::writeEeprom(e_eeprom eeprom, char *bytes, unsigned int offset, unsigned int size)
{
    const Bytes written = given(bytes, size);
    return Call("KyEeprom.writeEeprom", eeprom, written, offset, size).act([&] {
        return written.content.size() == size && writeBytes(eeprom, written.content, offset);
    });
}

int KyEeprom::setWriteEnable(bool enable)
{
    return Call("KyEeprom.setWriteEnable", enable).act([enable] {
        return writeNumber(writeEnabledFile, enable);
    });
}
