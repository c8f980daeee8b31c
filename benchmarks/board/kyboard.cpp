/* The board library of the benchmark: every operation succeeds immediately without an effect. */

#include "kyals.h"
#include "kybacklight.h"
#include "kybatmonitor.h"
#include "kyboardrev.h"
#include "kyeeprom.h"
#include "kyleds.h"
#include "kypowerman.h"
#include "kytemperature.h"

#include "records.h"

KyAls::KyAls() : m_handle(nullptr) {}
KyAls::~KyAls() = default;

int KyAls::init()
{
    return 0;
}

int KyAls::readLux(float *lux)
{
    *lux = 120;
    return 0;
}

unsigned char KyAls::convLuxInExponentMantissaByte(float)
{
    return 0;
}

int KyAls::setThresholds(unsigned char, unsigned char)
{
    return 0;
}

int KyAls::setThresholdsTimer(unsigned char)
{
    return 0;
}

int KyAls::interruptEnable(bool)
{
    return 0;
}

/** An interrupt line that never interrupts. */
int KyAls::getinterruptHandler()
{
    return -1;
}

int KyAls::interruptRead(bool *raised)
{
    *raised = false;
    return 0;
}

KyBacklight::KyBacklight() : m_handle(nullptr) {}
KyBacklight::~KyBacklight() = default;

int KyBacklight::getBrightness()
{
    return 55;
}

int KyBacklight::setBrightness(unsigned char)
{
    return 0;
}

int KyBacklight::enableBacklight(bool)
{
    return 0;
}

KyBatmonitor::KyBatmonitor() : m_handle(nullptr) {}
KyBatmonitor::~KyBatmonitor() = default;

int KyBatmonitor::update(bool)
{
    return 0;
}

int KyBatmonitor::getCmeterType()
{
    return 1;
}

int KyBatmonitor::getBatteryInfo(cmeter_data *data)
{
    *data = {0, 80, 7600};
    return 0;
}

int KyBatmonitor::prepareForShutdown()
{
    return 0;
}

KyBoardRev::KyBoardRev() : m_handle(nullptr) {}
KyBoardRev::~KyBoardRev() = default;

int KyBoardRev::setBrand(e_brand)
{
    return 0;
}

int KyBoardRev::setModel(e_model)
{
    return 0;
}

int KyBoardRev::getRevision(e_device, unsigned int *revision)
{
    *revision = 1;
    return 0;
}

int KyBoardRev::setSoMRevision(unsigned int)
{
    return 0;
}

KyEeprom::KyEeprom() : m_handle(nullptr) {}
KyEeprom::~KyEeprom() = default;

/** The records of a new board with a screen. */
int KyEeprom::readEeprom(e_eeprom eeprom, char **buffer, unsigned int offset, unsigned int size)
{
    std::string content =
        eeprom == EEPROM_INSTRUMENT ? board::instrumentRecord() : board::measureRecord();
    content.resize(offset + size, '\xFF');
    content.copy(*buffer, size, offset);
    return 0;
}

int KyEeprom::writeEeprom(e_eeprom, char *, unsigned int, unsigned int)
{
    return 0;
}

int KyEeprom::setWriteEnable(bool)
{
    return 0;
}

KyLeds::KyLeds() : m_handle(nullptr) {}
KyLeds::~KyLeds() = default;

int KyLeds::setLedState(e_leds, e_led_state)
{
    return 0;
}

int KyLeds::getLedState(e_leds, e_led_state *state)
{
    *state = LED_OFF;
    return 0;
}

KyPowerman::KyPowerman() : m_handle(nullptr) {}
KyPowerman::~KyPowerman() = default;

int KyPowerman::wifiPower(bool)
{
    return 0;
}

int KyPowerman::wifiSoftReset()
{
    return 0;
}

int KyPowerman::wifiHardReset()
{
    return 0;
}

int KyPowerman::setAckWatchdog()
{
    return 0;
}

KyTemperature::KyTemperature() : m_handle(nullptr) {}
KyTemperature::~KyTemperature() = default;

int KyTemperature::getTemperature(e_tempdev sensor, int *temperature)
{
    *temperature = sensor == TEMPDEV_SOM ? 42 : 38;
    return 0;
}
