#ifndef KYSCREENBACKLIGHT_H
#define KYSCREENBACKLIGHT_H

#include "backlightsteps.h"
#include "introspection/Backlight.h"

#include <QDBusAbstractAdaptor>

class KyBrightness;
class QDBusMessage;

/**
 * The backlight of the screen, set as a percentage, as a step of a table of percentages, or by the
 * ambient light.
 *
 * Every start begins in manual mode with the backlight as the hardware left it. An error code that
 * a method does not name is answered with a sentence that asks for a bug report.
 */
class KyScreenBacklight : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.BoardManager.Backlight")
    Q_CLASSINFO("D-Bus Introspection", INTROSPECTION_BACKLIGHT)

public:
    /** Reads the steps from the settings and attaches the light sensor, too, to @p parent. */
    explicit KyScreenBacklight(QObject *parent);

public Q_SLOTS:
    /** The present percentage. Error::m_read when it cannot be read. */
    int getBacklight(const QDBusMessage &message);

    /**
     * Sets the percentage @p backlight, 0 to 100; the mode stays.
     *
     * Error::m_invalidArgument for any other number, Error::m_write when the hardware refuses.
     */
    void setBacklight(int backlight, const QDBusMessage &message);

    /** Switches the backlight on or off. Error::m_write when the hardware refuses. */
    void enableBacklight(bool enable, const QDBusMessage &message);

    /**
     * The step of the present percentage: 1 to 12, or 15 above the whole table.
     *
     * Error::m_read when it cannot be read.
     */
    int getBacklightStep(const QDBusMessage &message);

    /**
     * Chooses automatic or manual mode, and the step of manual mode.
     *
     * The mode is changed even when the step is refused. In automatic mode the step is only
     * checked, and the backlight set by the present light.
     *
     * @param getBacklightStep 0 to 13, of which 13 means 12
     *
     * Error::m_invalidArgument for any other step or for one whose percentage is none,
     * Error::m_write when the hardware refuses in manual mode, Error::m_read when the light cannot
     * be read in automatic mode.
     */
    void setBacklightStep(bool autoBacklight, int getBacklightStep, const QDBusMessage &message);

Q_SIGNALS:
    /**
     * The backlight followed the ambient light.
     *
     * @param backlight the new percentage; -1 when it could not be set
     * @param getBacklightStep its step, 0 to 12; -1 when it could not be set
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
