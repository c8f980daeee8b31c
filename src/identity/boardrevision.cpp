#include "boardrevision.h"

unsigned int libraryModel(quint16 model)
{
    switch (model) {
    case 0x8343:
        return 0;
    case 0x8345:
        return 1;
    case 0x8347:
        return 2;
    default:
        return 3;
    }
}

QString fpgaRevisionText(unsigned int revision)
{
    return QStringLiteral("%1.%2").arg(revision >> 16).arg(revision & 0xFFFF);
}
