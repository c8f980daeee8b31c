#ifndef SETTINGTEXT_H
#define SETTINGTEXT_H

#include <QString>
#include <QVariant>

/**
 * Returns a client's setting @p key as text, the type that ConnMan expects; empty if it cannot be
 * converted.
 */
QString settingText(const QVariantMap &settings, const char *key);

#endif
