#ifndef SETTINGS_H
#define SETTINGS_H

#include <QSettings>
#include <QString>

/**
 * The daemon's settings file, "/opt/settings.ini".
 *
 * A missing, unreadable or malformed file counts as an empty one: every reader passes the default
 * of its key. The backlight and the light sensor read their settings in their constructors, so a
 * change of the file takes effect at the next start of the daemon.
 */
class Settings : public QSettings
{
public:
    /** The only instance in the process, created on first use. */
    static Settings &instance();

    /**
     * Stores @p value under @p key; QSettings writes the file soon afterwards. If the path of the
     * settings file now leads to a FIFO, a device or a directory, drops @p value and keeps the
     * earlier value. If the path already led to one of these when the daemon started, values are
     * kept in memory only.
     */
    void store(const QString &key, const QVariant &value);

private:
    Settings();
};

// Key constants: a group's prefix, then the full keys of the group. Some keys are part of the file
// format, but the daemon does not read them.

extern const QString USER;
/**
 * The prefix of one key for each user; the user's name follows. The value (bool, default false)
 * says whether this user's profile may be used.
 */
extern const QString USER_STATE;

extern const QString NETWORK_ENABLE_WINDOW;

extern const QString WIFI_AP;
extern const QString WIFI_AP_IP;
extern const QString WIFI_AP_NETMASK;
extern const QString WIFI_AP_MIN_CHANNEL;
extern const QString WIFI_AP_MAX_CHANNEL;
extern const QString WIFI_AP_WPS_CHECK_INTERVAL;

/** Backlight percentages, int. The daemon does not read steps 0 to 2. */
extern const QString SCREEN_BACKLIGHT;
extern const QString SCREEN_BACKLIGHT_STEP_0;
extern const QString SCREEN_BACKLIGHT_STEP_1;
extern const QString SCREEN_BACKLIGHT_STEP_2;
extern const QString SCREEN_BACKLIGHT_STEP_3;
extern const QString SCREEN_BACKLIGHT_STEP_4;
extern const QString SCREEN_BACKLIGHT_STEP_5;
extern const QString SCREEN_BACKLIGHT_STEP_6;
extern const QString SCREEN_BACKLIGHT_STEP_7;
extern const QString SCREEN_BACKLIGHT_STEP_8;
extern const QString SCREEN_BACKLIGHT_STEP_9;
extern const QString SCREEN_BACKLIGHT_STEP_10;
extern const QString SCREEN_BACKLIGHT_STEP_11;
extern const QString SCREEN_BACKLIGHT_STEP_12;
extern const QString SCREEN_BACKLIGHT_STEP_13;
extern const QString SCREEN_BACKLIGHT_STEP_14;
extern const QString SCREEN_BACKLIGHT_STEP_15;

/**
 * Light sensor: how long the light must stay outside the band around its level before the sensor
 * interrupts (unsigned int, in s), and the bounds of the brightness levels in lux (int).
 */
extern const QString BRIGHTNESS;
extern const QString BRIGHTNESS_TIMER;
extern const QString BRIGHTNESS_LEVEL_0;
extern const QString BRIGHTNESS_LEVEL_1;
extern const QString BRIGHTNESS_LEVEL_2;
extern const QString BRIGHTNESS_LEVEL_3;
extern const QString BRIGHTNESS_LEVEL_4;
extern const QString BRIGHTNESS_LEVEL_5;
extern const QString BRIGHTNESS_LEVEL_6;
extern const QString BRIGHTNESS_LEVEL_7;
extern const QString BRIGHTNESS_LEVEL_8;
extern const QString BRIGHTNESS_LEVEL_9;
extern const QString BRIGHTNESS_LEVEL_10;
extern const QString BRIGHTNESS_LEVEL_11;
extern const QString BRIGHTNESS_LEVEL_12;
extern const QString BRIGHTNESS_LEVEL_13;
extern const QString BRIGHTNESS_LEVEL_14;
extern const QString BRIGHTNESS_LEVEL_15;
extern const QString BRIGHTNESS_LEVEL_16;
extern const QString BRIGHTNESS_LEVEL_17;

extern const QString BATTERY_CHECK_INTERVAL;

#endif
