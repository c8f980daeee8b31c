#include "settings.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>

namespace
{
const QString settingsFile = QStringLiteral("/opt/settings.ini");

/**
 * Removes a stale lock file of the settings, which a power cut can leave: an empty file, or a file
 * with our own, recycled PID. QSettings would wait half a minute for such a lock.
 */
void removeStrayLock()
{
    const QString lockFile = settingsFile + QStringLiteral(".lock");
    qint64 process = 0;
    QString host;
    QString application;
    const bool hasOwner = QLockFile(lockFile).getLockInfo(&process, &host, &application);
    if (!hasOwner || process == QCoreApplication::applicationPid())
        QFile::remove(lockFile);
}

/**
 * Returns true if the settings file is a regular file, or could be created as one. QSettings would
 * block on a FIFO.
 */
bool isRegularFilePossible()
{
    const QFileInfo info(settingsFile);
    return !info.exists() || info.isFile();
}

/**
 * Returns the path of the settings file if the file is usable, otherwise a path at which no file
 * can be created. QSettings would create the missing directories of an ordinary path.
 */
QString usableSettingsFile()
{
    return isRegularFilePossible() ? settingsFile : QStringLiteral("/dev/null/settings.ini");
}
} // namespace

Settings::Settings() : QSettings(usableSettingsFile(), QSettings::IniFormat)
{
    removeStrayLock();
}

Settings &Settings::instance()
{
    static Settings settings;
    return settings;
}

void Settings::store(const QString &key, const QVariant &value)
{
    // QSettings reads the file again before it writes, and would block on a FIFO.
    if (fileName() != settingsFile || isRegularFilePossible())
        setValue(key, value);
}

const QString USER = QStringLiteral("Users/");
const QString USER_STATE = USER + QStringLiteral("state");

const QString NETWORK_ENABLE_WINDOW = QStringLiteral("Network/enableWindow");

const QString WIFI_AP = QStringLiteral("WifiAp/");
const QString WIFI_AP_IP = WIFI_AP + QStringLiteral("ip");
const QString WIFI_AP_NETMASK = WIFI_AP + QStringLiteral("netmask");
const QString WIFI_AP_MIN_CHANNEL = WIFI_AP + QStringLiteral("minChannel");
const QString WIFI_AP_MAX_CHANNEL = WIFI_AP + QStringLiteral("maxChannel");
const QString WIFI_AP_WPS_CHECK_INTERVAL = WIFI_AP + QStringLiteral("intervalWPS");

const QString SCREEN_BACKLIGHT = QStringLiteral("ScreenBacklight/");
const QString SCREEN_BACKLIGHT_STEP_0 = SCREEN_BACKLIGHT + QStringLiteral("step0");
const QString SCREEN_BACKLIGHT_STEP_1 = SCREEN_BACKLIGHT + QStringLiteral("step1");
const QString SCREEN_BACKLIGHT_STEP_2 = SCREEN_BACKLIGHT + QStringLiteral("step2");
const QString SCREEN_BACKLIGHT_STEP_3 = SCREEN_BACKLIGHT + QStringLiteral("step3");
const QString SCREEN_BACKLIGHT_STEP_4 = SCREEN_BACKLIGHT + QStringLiteral("step4");
const QString SCREEN_BACKLIGHT_STEP_5 = SCREEN_BACKLIGHT + QStringLiteral("step5");
const QString SCREEN_BACKLIGHT_STEP_6 = SCREEN_BACKLIGHT + QStringLiteral("step6");
const QString SCREEN_BACKLIGHT_STEP_7 = SCREEN_BACKLIGHT + QStringLiteral("step7");
const QString SCREEN_BACKLIGHT_STEP_8 = SCREEN_BACKLIGHT + QStringLiteral("step8");
const QString SCREEN_BACKLIGHT_STEP_9 = SCREEN_BACKLIGHT + QStringLiteral("step9");
const QString SCREEN_BACKLIGHT_STEP_10 = SCREEN_BACKLIGHT + QStringLiteral("step10");
const QString SCREEN_BACKLIGHT_STEP_11 = SCREEN_BACKLIGHT + QStringLiteral("step11");
const QString SCREEN_BACKLIGHT_STEP_12 = SCREEN_BACKLIGHT + QStringLiteral("step12");
const QString SCREEN_BACKLIGHT_STEP_13 = SCREEN_BACKLIGHT + QStringLiteral("step13");
const QString SCREEN_BACKLIGHT_STEP_14 = SCREEN_BACKLIGHT + QStringLiteral("step14");
const QString SCREEN_BACKLIGHT_STEP_15 = SCREEN_BACKLIGHT + QStringLiteral("step15");

const QString BRIGHTNESS = QStringLiteral("Brightness/");
const QString BRIGHTNESS_TIMER = BRIGHTNESS + QStringLiteral("timer");
const QString BRIGHTNESS_LEVEL_0 = BRIGHTNESS + QStringLiteral("level0");
const QString BRIGHTNESS_LEVEL_1 = BRIGHTNESS + QStringLiteral("level1");
const QString BRIGHTNESS_LEVEL_2 = BRIGHTNESS + QStringLiteral("level2");
const QString BRIGHTNESS_LEVEL_3 = BRIGHTNESS + QStringLiteral("level3");
const QString BRIGHTNESS_LEVEL_4 = BRIGHTNESS + QStringLiteral("level4");
const QString BRIGHTNESS_LEVEL_5 = BRIGHTNESS + QStringLiteral("level5");
const QString BRIGHTNESS_LEVEL_6 = BRIGHTNESS + QStringLiteral("level6");
const QString BRIGHTNESS_LEVEL_7 = BRIGHTNESS + QStringLiteral("level7");
const QString BRIGHTNESS_LEVEL_8 = BRIGHTNESS + QStringLiteral("level8");
const QString BRIGHTNESS_LEVEL_9 = BRIGHTNESS + QStringLiteral("level9");
const QString BRIGHTNESS_LEVEL_10 = BRIGHTNESS + QStringLiteral("level10");
const QString BRIGHTNESS_LEVEL_11 = BRIGHTNESS + QStringLiteral("level11");
const QString BRIGHTNESS_LEVEL_12 = BRIGHTNESS + QStringLiteral("level12");
const QString BRIGHTNESS_LEVEL_13 = BRIGHTNESS + QStringLiteral("level13");
const QString BRIGHTNESS_LEVEL_14 = BRIGHTNESS + QStringLiteral("level14");
const QString BRIGHTNESS_LEVEL_15 = BRIGHTNESS + QStringLiteral("level15");
const QString BRIGHTNESS_LEVEL_16 = BRIGHTNESS + QStringLiteral("level16");
const QString BRIGHTNESS_LEVEL_17 = BRIGHTNESS + QStringLiteral("level17");

const QString BATTERY_CHECK_INTERVAL = QStringLiteral("Alimentation/intervalBattery");
