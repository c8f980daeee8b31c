#include "layout.h"

#include "enumnames.h"
#include "leds.h"

#include <QRegularExpression>
#include <QStringList>

namespace
{
constexpr int leastWidth = 20;

constexpr char red[] = "31";
constexpr char green[] = "32";
constexpr char yellow[] = "33";
constexpr char cyan[] = "36";
constexpr char faint[] = "2";

/** Patterns and their colours; the first match counts. ANY_LED stands for the name of any LED. */
const struct {
    const char *pattern;
    const char *colour;
} colours[] = {
    {"BAT_RS1 *=? *(?:ON|BLINK_[13]HZ)", red},
    {"(?:BAT_GS[1-5]|POWER_G) *=? *(?:ON|BLINK_[13]HZ)", green},
    {"POWER_Y *=? *(?:ON|BLINK_[13]HZ)", yellow},
    {"(?:ANY_LED) *=? *(?:ON|BLINK_[13]HZ)", cyan},
    {"CHARGER_OFF_(?:UNKNOWN_BAT|BAT_PRWT|BAT_INF_20)|CHARGER_ON_NO_BAT", red},
    {"CHARGER_OFF_BAT_INF_40", yellow},
    {"CHARGER_(?:ON|OFF)_BAT_[A-Z0-9_]+", green},
    {"failure|not available:.*|daemon\\.(?:left|away)", red},
    {"online|ready|daemon\\.(?:came|there)", green},
    {"association|configuration|disconnect", yellow},
    {"not connected|none|off", faint},
};

QString escape(const char *colour)
{
    return QStringLiteral("\033[%1m").arg(QLatin1String(colour));
}

QString inColour(const QString &text, const char *colour)
{
    return escape(colour) + text + escape("0");
}

/** Combines all patterns into one, with one capture group for each. */
QRegularExpression makePattern()
{
    const QString leds =
        enumNames(registeredEnum(Leds::staticMetaObject, "Led")).join(QLatin1Char('|'));
    QStringList groups;
    for (const auto &each : colours)
        groups << QStringLiteral("(%1)").arg(QLatin1String(each.pattern));
    groups.replaceInStrings(QStringLiteral("ANY_LED"), leds);
    return QRegularExpression(
        QStringLiteral("(?<![\\w.'-])(?:%1)(?![\\w.'-])").arg(groups.join(QLatin1Char('|'))));
}

/** Returns the indentation for continuation lines of @p line. */
int indentation(const QString &line)
{
    static const QRegularExpression gap(QStringLiteral("^ *\\S.*?  +(?=\\S)"));
    const QRegularExpressionMatch match = gap.match(line);
    return match.hasMatch() ? match.capturedLength() : 4;
}

QString wrappedLine(QString line, int width)
{
    const int indent = indentation(line) < width / 2 ? indentation(line) : 4;
    QString made;
    while (line.size() > width) {
        int end = line.lastIndexOf(QLatin1Char(' '), width);
        if (end <= indent)
            end = line.indexOf(QLatin1Char(' '), width);
        if (end < 0)
            break;
        made += line.left(end) + QLatin1Char('\n');
        line = QString(indent, QLatin1Char(' ')) + line.mid(end + 1);
    }
    return made + line;
}
} // namespace

QString wrapped(const QString &text, int width)
{
    if (width < leastWidth)
        return text;
    QStringList lines = text.split(QLatin1Char('\n'));
    for (QString &line : lines)
        line = wrappedLine(line, width);
    return lines.join(QLatin1Char('\n'));
}

QString coloured(const QString &text)
{
    static const QRegularExpression pattern = makePattern();
    QString made;
    int end = 0;
    QRegularExpressionMatchIterator matches = pattern.globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        const char *colour = colours[match.lastCapturedIndex() - 1].colour;
        made += text.mid(end, match.capturedStart() - end) + inColour(match.captured(), colour);
        end = match.capturedEnd();
    }
    return made + text.mid(end);
}

QString alarming(const QString &text)
{
    return inColour(text, red);
}
