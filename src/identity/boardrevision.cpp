#include "boardrevision.h"

e_model libraryModel(quint16 model)
{
    switch (model) {
    case 0x8343:
        return static_cast<e_model>(0);
    case 0x8345:
        return static_cast<e_model>(1);
    case 0x8347:
        return static_cast<e_model>(2);
    default:
        return static_cast<e_model>(3);
    }
}

QString fpgaRevisionText(unsigned int revision)
{
    return QStringLiteral("%1.%2").arg(revision >> 16).arg(revision & 0xFFFF);
}
