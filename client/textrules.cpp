#include "textrules.h"

#include <QVector>

#include <algorithm>

namespace
{
bool isHexadecimal(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar digit) {
        return (digit >= QLatin1Char('0') && digit <= QLatin1Char('9')) ||
               (digit >= QLatin1Char('a') && digit <= QLatin1Char('f')) ||
               (digit >= QLatin1Char('A') && digit <= QLatin1Char('F'));
    });
}

/**
 * Returns true for control characters, and for line and paragraph separators, which also end a line
 * in some viewers.
 */
bool isControl(QChar character)
{
    return character.category() == QChar::Other_Control || character == QChar::LineSeparator ||
           character == QChar::ParagraphSeparator;
}
} // namespace

bool isFreeOfControls(const QString &text)
{
    return std::none_of(text.begin(), text.end(), isControl);
}

bool isPrintableAscii(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar character) {
        return character >= QLatin1Char(' ') && character <= QLatin1Char('~');
    });
}

bool isNetworkName(const QString &text)
{
    return !text.isEmpty() && text.toUtf8().size() <= 32 && isFreeOfControls(text);
}

bool isListedNetworkName(const QString &text)
{
    return !text.isEmpty() && text.toUcs4().size() <= 32 && isFreeOfControls(text);
}

bool isUserName(const QString &text)
{
    return !text.isEmpty() && text.size() <= 255 && isFreeOfControls(text);
}

bool isPassphrase(const QString &text)
{
    return text.size() >= 8 && text.size() <= 63 && isPrintableAscii(text);
}

bool isNetworkKey(const QString &text)
{
    const bool isWepKey = (text.size() == 5 || text.size() == 13) && isPrintableAscii(text);
    return isPassphrase(text) || isWepKey || (text.size() == 64 && isHexadecimal(text));
}

bool isHexadecimal16(const QString &text)
{
    return !text.isEmpty() && text.size() <= 4 && isHexadecimal(text);
}

bool isWholeNumber(const QString &text)
{
    const QString digits = text.startsWith(QLatin1Char('-')) ? text.mid(1) : text;
    return !digits.isEmpty() && std::all_of(digits.begin(), digits.end(), [](QChar digit) {
        return digit >= QLatin1Char('0') && digit <= QLatin1Char('9');
    });
}

bool isFileName(const QString &text)
{
    return !text.isEmpty();
}

QString shown(const QString &text)
{
    QString safe;
    for (const QChar character : text)
        safe += isControl(character)
                    ? QStringLiteral("\\x%1").arg(character.unicode(), 2, 16, QLatin1Char('0'))
                    : QString(character);
    return safe;
}
