#include "commandline.h"

#include "textrules.h"

#include <QFile>
#include <QRegExp>

#include <limits>

namespace
{
/** Longer than any file of numbers. Limits the read if the user names a wrong file. */
constexpr qint64 longestFileBytes = 65536;

bool isSecret(const Argument &argument)
{
    return argument.kind == Kind::SecretBytes;
}

bool parseInteger(const Argument &argument, const QString &word, QVariant &value)
{
    bool isNumber = false;
    const qlonglong number = word.toLongLong(&isNumber);
    // Qt also accepts blanks and a plus sign.
    if (!isNumber || !isWholeNumber(word) || number < argument.minimum || number > argument.maximum)
        return false;
    // Use an unsigned number only if an int cannot hold the value: parameters of methods are
    // signed.
    value =
        number > std::numeric_limits<int>::max() ? QVariant(uint(number)) : QVariant(int(number));
    return true;
}

/**
 * Sets @p text to @p word. If @p word is an at sign and the name of a file, sets @p text to the
 * content of the file instead. Returns false if the file cannot be read.
 */
bool readNumbers(const QString &word, QString &text)
{
    text = word;
    if (!word.startsWith(QLatin1Char('@')))
        return true;
    QFile file(word.mid(1));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    text = QString::fromLatin1(file.read(longestFileBytes)).simplified();
    return true;
}

/** Converts a list of numbers. Returns the error in the list; empty if there is none. */
QString parseNumbers(const Argument &argument, const QString &word, QVariant &value)
{
    QString text;
    if (!readNumbers(word, text))
        return QStringLiteral("%1: the file '%2' cannot be read")
            .arg(argument.name, shown(word.mid(1)));
    const QStringList parts = text.split(QRegExp(QStringLiteral("[, ]+")));
    QVariantList numbers;
    for (const QString &part : parts) {
        bool isNumber = false;
        numbers << part.toUInt(&isNumber);
        if (!isNumber || !isWholeNumber(part))
            return QStringLiteral("%1: '%2' is not a whole number from 0 to %3")
                .arg(argument.name, shown(part))
                .arg(std::numeric_limits<quint32>::max());
    }
    value = numbers;
    if (numbers.size() == argument.maximum)
        return QString();
    return QStringLiteral("%1: %2 numbers are given, and the record has %3")
        .arg(argument.name)
        .arg(numbers.size())
        .arg(argument.maximum);
}

QString bytesWanted(const Argument &argument)
{
    return QStringLiteral("up to %1 printable ASCII characters").arg(argument.maximum);
}

bool areBytes(const Argument &argument, const QString &text)
{
    return text.size() <= argument.maximum && isPrintableAscii(text);
}

const Argument *findKey(const Argument &settings, const QString &name)
{
    for (const Argument &key : settings.keys) {
        if (key.name == name)
            return &key;
    }
    return nullptr;
}

QStringList keyNames(const Argument &settings)
{
    QStringList names;
    for (const Argument &key : settings.keys) {
        if (!isSecret(key))
            names << key.name;
    }
    return names;
}

bool parseSetting(const Argument &settings, const QString &word, QVariantMap &map,
                  QString &complaint)
{
    const int equals = word.indexOf(QLatin1Char('='));
    const QString name = word.left(equals);
    const Argument *key = equals < 1 ? nullptr : findKey(settings, name);
    if (!key) {
        complaint = QStringLiteral("'%1' is none of %2")
                        .arg(shown(word),
                             keyNames(settings).join(QStringLiteral("=, ")) + QLatin1Char('='));
        return false;
    }
    if (isSecret(*key)) {
        complaint = name + QStringLiteral(" is not taken from the command line");
        return false;
    }
    if (map.contains(name)) {
        complaint = name + QStringLiteral(" is given twice");
        return false;
    }
    QVariant value;
    if (!parseValue(*key, word.mid(equals + 1), value, complaint))
        return false;
    map.insert(name, value);
    return true;
}

bool addSecrets(const Argument &settings, const SecretReader &reader, QVariantMap &map,
                QString &complaint)
{
    for (const Argument &key : settings.keys) {
        if (!isSecret(key))
            continue;
        QString secret;
        if (!reader(key.name, secret)) {
            complaint = key.name + QStringLiteral(" could not be read");
            return false;
        }
        // The complaint must not contain the secret.
        if (!areBytes(key, secret)) {
            complaint =
                QStringLiteral("%1: what was given is not %2").arg(key.name, bytesWanted(key));
            return false;
        }
        map.insert(key.name, secret.toLatin1());
    }
    return true;
}

bool parseChoices(const Argument &argument, const QStringList &words, QVariant &value,
                  QString &complaint)
{
    for (const QString &word : words) {
        if (argument.choices.contains(word))
            continue;
        complaint = QStringLiteral("'%1' is none of %2")
                        .arg(shown(word), argument.choices.join(QStringLiteral(", ")));
        return false;
    }
    value = words;
    return true;
}

bool parseSettings(const Argument &settings, const QStringList &words, const SecretReader &reader,
                   QVariant &value, QString &complaint)
{
    QVariantMap map;
    for (const QString &word : words) {
        if (!parseSetting(settings, word, map, complaint))
            return false;
    }
    for (const Argument &key : settings.keys) {
        if (key.required && !isSecret(key) && !map.contains(key.name)) {
            complaint = key.name + QStringLiteral("= is missing");
            return false;
        }
    }
    if (settings.disagreement)
        complaint = settings.disagreement(map);
    if (!complaint.isEmpty() || !addSecrets(settings, reader, map, complaint))
        return false;
    value = map;
    return true;
}
} // namespace

bool parseValue(const Argument &argument, const QString &word, QVariant &value, QString &complaint)
{
    bool isGood = true;
    QString wanted;
    switch (argument.kind) {
    case Kind::Choice:
        isGood = argument.choices.contains(word);
        wanted = QStringLiteral("one of ") + argument.choices.join(QStringLiteral(", "));
        value = word;
        break;
    case Kind::Integer:
        isGood = parseInteger(argument, word, value);
        wanted = QStringLiteral("a whole number from %1 to %2")
                     .arg(argument.minimum)
                     .arg(argument.maximum);
        break;
    case Kind::Switch:
        isGood = word == QLatin1String("on") || word == QLatin1String("off");
        wanted = QStringLiteral("on or off");
        value = word == QLatin1String("on");
        break;
    case Kind::Hex16:
        isGood = isHexadecimal16(word);
        wanted = QStringLiteral("up to four hexadecimal digits");
        value = word;
        break;
    case Kind::Bytes:
        isGood = areBytes(argument, word);
        wanted = bytesWanted(argument);
        value = word.toLatin1();
        break;
    case Kind::Numbers:
        complaint = parseNumbers(argument, word, value);
        return complaint.isEmpty();
    default:
        isGood = !argument.accepts || argument.accepts(word);
        wanted = argument.wanted;
        value = word;
    }
    if (!isGood)
        complaint = QStringLiteral("%1: '%2' is not %3").arg(argument.name, shown(word), wanted);
    return isGood;
}

bool parseArguments(const Command &command, const QStringList &words, const SecretReader &reader,
                    QVariantList &arguments, QString &complaint)
{
    complaint.clear();
    QStringList left = words;
    for (const Argument &argument : command.arguments) {
        QVariant value;
        if (argument.kind == Kind::Settings) {
            if (!parseSettings(argument, left, reader, value, complaint))
                return false;
            left.clear();
        } else if (argument.kind == Kind::Choices) {
            if (!parseChoices(argument, left, value, complaint))
                return false;
            left.clear();
        } else if (left.isEmpty()) {
            complaint = argument.name + QStringLiteral(" is missing");
            return false;
        } else if (!parseValue(argument, left.takeFirst(), value, complaint)) {
            return false;
        }
        arguments << value;
    }
    if (!left.isEmpty()) {
        complaint = QStringLiteral("'%1' is one word too many").arg(shown(left.first()));
        return false;
    }
    return true;
}
