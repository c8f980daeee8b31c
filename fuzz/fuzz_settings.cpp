#include "backlightsteps.h"
#include "brightnesslevels.h"
#include "choices.h"
#include "require.h"
#include "settings.h"

#include <QSettings>

#include <fstream>
#include <string>
#include <unistd.h>

namespace
{
/** A file with a new name each time, because QSettings caches the content by name. */
class TemporaryFile
{
public:
    explicit TemporaryFile(const std::string &content)
        : m_path("/dev/shm/settings-" + std::to_string(getpid()) + '-' + std::to_string(++m_count))
    {
        std::ofstream(m_path) << content;
    }
    ~TemporaryFile() { unlink(m_path.c_str()); }
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;

    QString path() const { return QString::fromStdString(m_path); }

private:
    static inline int m_count = 0;
    const std::string m_path;
};
} // namespace

/** Settings files with any content, read as by the daemon. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Choices choices(data, size);
    const TemporaryFile file(choices.rest());
    const QSettings settings(file.path(), QSettings::IniFormat);

    BrightnessBounds bounds;
    for (int level = 0; level < 18; ++level)
        bounds.level[level] =
            settings.value(BRIGHTNESS + QStringLiteral("level%1").arg(level), level).toInt();
    const int level = brightnessLevel(100, bounds);
    require(level >= 1 && level <= 16, "light has a level");
    const std::optional<BrightnessBand> band = brightnessBand(level, bounds);
    require(!band || (band->low >= 0 && band->low <= band->high), "a band has ordered bounds");
    thresholdTimerByte(settings.value(BRIGHTNESS_TIMER, 5).toUInt());

    BacklightSteps steps;
    for (int step = 0; step < 13; ++step)
        steps.percentage[step] =
            settings.value(SCREEN_BACKLIGHT + QStringLiteral("step%1").arg(step + 3), step).toInt();
    const int step = backlightStep(50, steps);
    require(hasBacklightEntry(step) || step == stepAboveAll, "a percentage has a step");

    settings.value(USER_STATE + QStringLiteral("user1"), false).toBool();
    return 0;
}
