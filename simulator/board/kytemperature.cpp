#include "kytemperature.h"

#include "boarddirectory.h"
#include "call.h"
#include "value.h"

#include <climits>

using namespace board;

namespace
{
std::optional<int> measure(e_tempdev sensor)
{
    switch (sensor) {
    case TEMPDEV_SOM:
        return readNumber<int>("temperature/SOM", INT_MIN, INT_MAX);
    case TEMPDEV_ANALOG_CHAIN:
        return readNumber<int>("temperature/ANALOG_CHAIN", INT_MIN, INT_MAX);
    }
    return {};
}
} // namespace

KyTemperature::KyTemperature() : m_handle(nullptr)
{
    createOnce();
}

KyTemperature::~KyTemperature() = default;

int KyTemperature::getTemperature(e_tempdev sensor, int *temperature)
{
    return Call("KyTemperature.getTemperature", sensor).read(temperature, INT_MIN, [sensor] {
        return measure(sensor);
    });
}
