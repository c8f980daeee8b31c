#include "kyals.h"

#include "boarddirectory.h"
#include "call.h"
#include "lightsensor.h"
#include "thresholdcode.h"

#include <limits>

using namespace board;

namespace
{
constexpr int noDescriptor = -2;
constexpr int unusableDescriptor = 1000000;

LightSensor &sensor(void *handle)
{
    return *static_cast<LightSensor *>(handle);
}
} // namespace

KyAls::KyAls() : m_handle(new LightSensor)
{
    createOnce();
}

KyAls::~KyAls()
{
    delete &sensor(m_handle);
}

int KyAls::init()
{
    return Call("KyAls.init").act([this] { return sensor(m_handle).init(); });
}

int KyAls::readLux(float *lux)
{
    return Call("KyAls.readLux").read(lux, std::numeric_limits<float>::quiet_NaN(), [this] {
        return sensor(m_handle).read();
    });
}

unsigned char KyAls::convLuxInExponentMantissaByte(float lux)
{
    return Call("KyAls.convLuxInExponentMantissaByte", lux).answer<unsigned char>(0, 0x5A, [lux] {
        return thresholdCode(lux);
    });
}

int KyAls::setThresholds(unsigned char high, unsigned char low)
{
    return Call("KyAls.setThresholds", high, low).act([this, high, low] {
        return sensor(m_handle).setThresholds(high, low);
    });
}

int KyAls::setThresholdsTimer(unsigned char persistence)
{
    return Call("KyAls.setThresholdsTimer", persistence).act([this, persistence] {
        return sensor(m_handle).setTimer(persistence);
    });
}

int KyAls::interruptEnable(bool enable)
{
    return Call("KyAls.interruptEnable", enable).act([this, enable] {
        return sensor(m_handle).enableInterrupt(enable);
    });
}

int KyAls::getinterruptHandler()
{
    return Call("KyAls.getinterruptHandler").answer(noDescriptor, unusableDescriptor, [this] {
        return sensor(m_handle).descriptor();
    });
}

int KyAls::interruptRead(bool *raised)
{
    return Call("KyAls.interruptRead").read(raised, true, [this] {
        return sensor(m_handle).acknowledge();
    });
}
