/* The register library of the benchmark: a running system without a charger. */

#include "kysocmanager.h"

KySocManager::KySocManager() : m_handle(nullptr) {}
KySocManager::~KySocManager() = default;

int KySocManager::initSPI()
{
    return 0;
}

int KySocManager::getSoCRegister(unsigned short, unsigned int *value)
{
    *value = 1;
    return 0;
}
