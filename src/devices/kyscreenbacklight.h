#ifndef KYSCREENBACKLIGHT_H
#define KYSCREENBACKLIGHT_H

#include "backlightsteps.h"
#include "introspection/Backlight.h"

#include <QDBusAbstractAdaptor>

class KyBrightness;
class QDBusMessage;

/**
 * The backlight of the screen: set as a percentage, as a step of a table of percentages, or by the
 * ambient light.
 *
 * Starts in manual mode, without changing the backlight.
 */
class KyScreenBacklight : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.BoardManager.Backlight")
    Q_CLASSINFO("D-Bus Introspection", INTROSPECTION_BACKLIGHT)

public:
    /** Reads the steps from the settings; also adds the light sensor's adaptor to @p parent. */
    explicit KyScreenBacklight(QObject *parent);

public Q_SLOTS:
    /** Returns the current percentage. Error::m_read if it cannot be read. */
    int getBacklight(const QDBusMessage &message);

    /**
     * Sets the percentage @p backlight, 0 to 100; does not change the mode.
     *
     * Error::m_invalidArgument for any other number, Error::m_write if the hardware refuses.
     */
    void setBacklight(int backlight, const QDBusMessage &message);

    /** Switches the backlight on or off. Error::m_write if the hardware refuses. */
    void enableBacklight(bool enable, const QDBusMessage &message);

    /**
     * Returns the step of the current percentage: 1 to 12, or 15 above the whole table.
     *
     * Error::m_read if it cannot be read.
     */
    int getBacklightStep(const QDBusMessage &message);

    /**
     * Sets automatic or manual mode, and the step of manual mode.
     *
     * Changes the mode even if the step is invalid. Automatic mode sets the backlight for the
     * current light; the step is only checked.
     *
     * @param getBacklightStep 0 to 13; 13 means 12
     *
     * Fails with
     * - Error::m_invalidArgument for any other step; in manual mode also for a step whose
     *   percentage is out of range;
     * - Error::m_write in manual mode if the hardware refuses;
     * - Error::m_read in automatic mode if the light cannot be read.
     */
    void setBacklightStep(bool autoBacklight, int getBacklightStep, const QDBusMessage &message);

Q_SIGNALS:
    /**
     * Sent in automatic mode, after an attempt to adapt the backlight to the ambient light.
     *
     * @param backlight the new percentage; -1 if the backlight could not be read or set
     * @param getBacklightStep the new step, 0 to 12; -1 if the backlight could not be read or set
     */
    void backlightChanged(int backlight, int getBacklightStep);

private:
    void handleBrightnessChange(double brightness, int brightnessLevel);
    int followLight();

    KyBrightness *m_brightness;
    bool m_autoBacklight;
    BacklightSteps m_steps;
};

#endif
