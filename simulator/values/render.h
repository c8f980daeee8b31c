#ifndef RENDER_H
#define RENDER_H

#include <QList>
#include <QString>
#include <QVariant>

/**
 * Formats a bus value as text that shows its type: strings in quotes, b and i plain, every other
 * number with its type before it (u:5), variants in <>, structures in (), arrays in [],
 * dictionaries in {} sorted by key, byte arrays as ay:"hexadecimal".
 */
QString render(const QVariant &value);

/** Formats the values of a message, in parentheses. */
QString render(const QList<QVariant> &arguments);

#endif
