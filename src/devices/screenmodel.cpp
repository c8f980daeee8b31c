#include "screenmodel.h"

bool hasScreen(const QString &model)
{
    // A text that does not parse gives 0. The mask folds the two models with a screen, 0x8345 and
    // 0x8347, and no other one, together.
    return (model.toUShort(nullptr, 16) & 0xFFFD) == 0x8345;
}
