#ifndef SCREENMODEL_H
#define SCREENMODEL_H

#include <QString>

/**
 * Returns true if the instrument model @p model has a screen, a backlight and a light sensor.
 *
 * @param model the model number in hexadecimal; returns false for any other text
 */
bool hasScreen(const QString &model);

#endif
