#ifndef SETTINGTEXT_H
#define SETTINGTEXT_H

#include <QString>
#include <QVariant>

/** A client's setting @p key as text, as ConnMan wants every one; empty where it is none. */
QString settingText(const QVariantMap &settings, const char *key);

#endif
