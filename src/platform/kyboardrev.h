#ifndef KYBOARDREV_H
#define KYBOARDREV_H

#include "iboardrev.h"

/** Board revisions; implemented in libKyBoard.so.1. */
class KyBoardRev : public IBoardRev
{
public:
    KyBoardRev();
    ~KyBoardRev() override;
    KyBoardRev(const KyBoardRev &) = delete;
    KyBoardRev &operator=(const KyBoardRev &) = delete;

    int setBrand(e_brand brand) override;
    int setModel(e_model model) override;
    int getRevision(e_device device, unsigned int *revision) override;
    int setSoMRevision(unsigned int revision) override;

private:
    void *m_handle;
};

#endif
