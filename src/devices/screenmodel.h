#ifndef SCREENMODEL_H
#define SCREENMODEL_H

#include <QString>

/**
 * Whether the instrument model @p model has a screen, and with it a backlight and a light sensor.
 *
 * @param model the model number in hexadecimal; a text that is none has no screen
 */
bool hasScreen(const QString &model);

#endif
