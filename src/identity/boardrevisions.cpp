#include "boardrevisions.h"

#include "boardrevision.h"
#include "iboardrev.h"

QVariantMap readRevisions(IBoardRev &board)
{
    QVariantMap revisions;
    unsigned int revision = 0;
    if (board.getRevision(DEVICE_SOM, &revision) == 0) {
        revisions.insert(QStringLiteral("SOM"), revision);
        board.setSoMRevision(revision);
    }
    if (board.getRevision(DEVICE_HPS, &revision) == 0)
        revisions.insert(QStringLiteral("HPS"), revision);
    if (board.getRevision(DEVICE_FPGA, &revision) == 0)
        revisions.insert(QStringLiteral("FPGA"), fpgaRevisionText(revision));
    if (board.getRevision(DEVICE_MESURE_CARD, &revision) == 0)
        revisions.insert(QStringLiteral("MESURE_CARD"), revision);
    return revisions;
}

void passInstrument(const QVariantMap &instrument, IBoardRev &board)
{
    const unsigned int brand = instrument.value(QStringLiteral("Brand")).toUInt();
    const QString model = instrument.value(QStringLiteral("Model")).toString();
    board.setBrand(static_cast<e_brand>(brand));
    board.setModel(static_cast<e_model>(libraryModel(model.toUShort(nullptr, 16))));
}
