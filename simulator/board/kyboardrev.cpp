#include "kyboardrev.h"

#include "boarddirectory.h"
#include "call.h"
#include "value.h"

#include <climits>

using namespace board;

namespace
{
const char *revisionFile(e_device device)
{
    switch (device) {
    case DEVICE_SOM:
        return "revision/SOM";
    case DEVICE_HPS:
        return "revision/HPS";
    case DEVICE_FPGA:
        return "revision/FPGA";
    case DEVICE_MESURE_CARD:
        return "revision/MESURE_CARD";
    }
    return nullptr;
}
} // namespace

KyBoardRev::KyBoardRev() : m_handle(nullptr)
{
    createOnce();
}

KyBoardRev::~KyBoardRev() = default;

int KyBoardRev::setBrand(e_brand brand)
{
    return Call("KyBoardRev.setBrand", brand).act([brand] {
        return brand <= UCHAR_MAX && writeNumber("revision/brand", brand);
    });
}

int KyBoardRev::setModel(e_model model)
{
    return Call("KyBoardRev.setModel", model).act([model] {
        return model <= 3 && writeNumber("revision/model", model);
    });
}

int KyBoardRev::getRevision(e_device device, unsigned int *revision)
{
    return Call("KyBoardRev.getRevision", device).read(revision, UINT_MAX, [device] {
        const char *file = revisionFile(device);
        return file ? readNumber<unsigned int>(file, 0, UINT_MAX) : std::nullopt;
    });
}

int KyBoardRev::setSoMRevision(unsigned int revision)
{
    return Call("KyBoardRev.setSoMRevision", revision).act([revision] {
        return writeNumber("revision/som_told", revision);
    });
}
