#include "defaults.h"

#include "ledname.h"
#include "records.h"

namespace board
{
namespace
{
/** The values that are one line of text. */
const struct {
    const char *name;
    const char *value;
} lines[] = {
    {"als/lux", "120"},
    {"als/threshold_high", "255"},
    {"als/threshold_low", "0"},
    {"als/timer", "50"},
    {"als/interrupt_enabled", "0"},
    {"als/interrupt", "0"},
    {"backlight/brightness", "55"},
    {"backlight/enabled", "1"},
    {"battery/type", "1"},
    {"battery/flag", "0"},
    {"battery/charge", "80"},
    {"battery/voltage", "7600"},
    {"battery/charger_told", "0"},
    {"battery/shutdowns_prepared", "0"},
    {"charger/present", "0"},
    {"powerman/wifi_supply", "0"},
    {"powerman/wifi_soft_resets", "0"},
    {"powerman/wifi_hard_resets", "0"},
    {"powerman/watchdog_acknowledgements", "0"},
    {"soc/0x68", "0"},
    {"soc/0x6b", "1"},
    {"soc/0x600", "0"},
    {"temperature/SOM", "42"},
    {"temperature/ANALOG_CHAIN", "38"},
    {"storage/SD/inserted", "0"},
    {"storage/SD/mounted", "0"},
    {"storage/USB/inserted", "0"},
    {"storage/USB/mounted", "0"},
    {"eeprom/write_enabled", "0"},
    {"watchdog/feeds", "0"},
    {"revision/SOM", "3"},
    {"revision/HPS", "1"},
    {"revision/FPGA", "0x00020003"},
    {"revision/MESURE_CARD", "2"},
};

/** Returns the content of an EEPROM: @p record, followed by erased bytes. */
std::string image(std::string record, std::size_t size)
{
    record.resize(size, '\xFF');
    return record;
}

std::vector<DefaultFile> makeDefaultFiles()
{
    std::vector<DefaultFile> files;
    for (const auto &line : lines)
        files.push_back({line.name, std::string(line.value) + '\n'});
    for (const LedName &led : ledNames)
        files.push_back({std::string("leds/") + led.name, "OFF\n"});
    files.push_back({"eeprom/instrument", image(instrumentRecord(), instrumentEepromSize)});
    files.push_back({"eeprom/measure", image(measureRecord(), measureEepromSize)});
    return files;
}
} // namespace

const std::vector<DefaultFile> &defaultFiles()
{
    // Never destroyed: the light sensor's thread may still run while the process exits.
    static const std::vector<DefaultFile> &files =
        *new std::vector<DefaultFile>(makeDefaultFiles());
    return files;
}
} // namespace board
