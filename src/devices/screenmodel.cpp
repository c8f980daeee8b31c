#include "screenmodel.h"

bool hasScreen(const QString &model)
{
    // A text that is not a number becomes 0. The mask matches exactly the two models with a screen,
    // 0x8345 and 0x8347.
    return (model.toUShort(nullptr, 16) & 0xFFFD) == 0x8345;
}
