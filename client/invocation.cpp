#include "invocation.h"

#include "busaddress.h"
#include "textrules.h"

#include <QCommandLineParser>

namespace
{
/**
 * Stands for the minus of a negative number while QCommandLineParser parses: a minus would start an
 * option.
 */
const QChar minus(0xE000);

bool isNegativeNumber(const QString &word)
{
    return word.size() > 1 && word.at(0) == QLatin1Char('-') && word.at(1).isDigit();
}

QString hidden(const QString &word)
{
    return isNegativeNumber(word) ? minus + word.mid(1) : word;
}

QString revealed(const QString &word)
{
    return word.startsWith(minus) ? QLatin1Char('-') + word.mid(1) : word;
}

QString withoutDashes(const QString &option)
{
    return option.mid(2);
}

QCommandLineOption parserOption(const Option &option)
{
    QStringList names{withoutDashes(option.name)};
    if (!option.letter.isEmpty())
        names << option.letter;
    return {names, option.help, option.value};
}

/** Returns the parser's error in the form of our complaints: lower case, without a full stop. */
QString complaintOf(const QCommandLineParser &parser)
{
    QString text = parser.errorText();
    if (text.endsWith(QLatin1Char('.')))
        text.chop(1);
    if (!text.isEmpty())
        text.replace(0, 1, text.at(0).toLower());
    return shown(text);
}

bool isPositiveNumber(const QString &text)
{
    bool isNumber = false;
    return text.toInt(&isNumber) > 0 && isNumber && isWholeNumber(text);
}
} // namespace

Invocation::Invocation(const QStringList &words)
{
    QCommandLineParser parser;
    for (const Option &option : options())
        parser.addOption(parserOption(option));
    QStringList line{QString()};
    for (const QString &word : words)
        line << hidden(word);
    if (!parser.parse(line))
        m_complaint = complaintOf(parser);
    const QStringList rest = parser.positionalArguments();
    for (const QString &word : rest)
        m_words << revealed(word);
    for (const Option &option : options()) {
        const QString name = withoutDashes(option.name);
        if (!parser.isSet(name))
            continue;
        const QString value = revealed(parser.value(name));
        m_values.insert(option.name, value);
        if (m_complaint.isEmpty() && option.isNumber() && !isPositiveNumber(value))
            m_complaint = QStringLiteral("%1: '%2' is not a number of %3")
                              .arg(option.name, shown(value), option.value.toLower());
        else if (m_complaint.isEmpty() && !option.choices.isEmpty() &&
                 !option.choices.contains(value))
            m_complaint =
                QStringLiteral("%1: '%2' is not one of %3")
                    .arg(option.name, shown(value), option.choices.join(QStringLiteral(", ")));
        else if (m_complaint.isEmpty() && !option.value.isEmpty() && value.isEmpty())
            m_complaint = QStringLiteral("%1: %2 is empty").arg(option.name, option.value);
    }
    if (m_complaint.isEmpty())
        m_complaint = checkedHost();
}

QString Invocation::checkedHost() const
{
    const QString host = value("--host");
    if (!has("--host") || isHostName(host))
        return has("--host") && has("--address")
                   ? QStringLiteral("--host and --address exclude each other")
                   : QString();
    return QStringLiteral("--host: '%1' is not the name of a machine").arg(shown(host));
}

QString Invocation::misplaced(const Command &command) const
{
    for (const Option &option : options()) {
        if (m_values.contains(option.name) && !belongsTo(option, command))
            return option.name + QStringLiteral(" does not belong here");
    }
    return QString();
}

bool Invocation::has(const char *option) const
{
    return m_values.contains(QString::fromLatin1(option));
}

QString Invocation::value(const char *option) const
{
    return m_values.value(QString::fromLatin1(option));
}

int Invocation::number(const char *option) const
{
    return value(option).toInt();
}
