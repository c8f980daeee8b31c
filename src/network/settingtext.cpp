#include "settingtext.h"

#include "busvalue.h"

QString settingText(const QVariantMap &settings, const char *key)
{
    return basicValue(settings.value(QLatin1String(key))).toString();
}
