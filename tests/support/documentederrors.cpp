#include "documentederrors.h"

#include "files.h"

#include <QStringList>

#include <algorithm>

namespace
{
/** Returns a pattern for @p text in which each name in {} matches any text. */
QRegularExpression patternOf(const QString &text)
{
    QStringList pieces;
    for (const QString &piece : text.split(QRegularExpression(QStringLiteral("\\{[a-z]+\\}"))))
        pieces << QRegularExpression::escape(piece);
    return QRegularExpression(QStringLiteral("\\A") + pieces.join(QStringLiteral(".*")) +
                                  QStringLiteral("\\z"),
                              QRegularExpression::DotMatchesEverythingOption);
}

QList<DocumentedError> readErrors()
{
    QList<DocumentedError> errors;
    QStringList lines = QString::fromUtf8(readFile(QStringLiteral(DOCUMENTED_ERRORS))).split('\n');
    lines.removeAll(QString());
    for (const QString &line : lines) {
        const QStringList parts = line.split('\t');
        errors << DocumentedError{parts.value(0),           parts.value(1),
                                  parts.value(2),           parts.value(3),
                                  parts.value(4) == "sent", patternOf(parts.value(3))};
    }
    if (errors.isEmpty())
        qFatal("no list of documented errors");
    return errors;
}
} // namespace

bool DocumentedError::matches(const QString &errorName, const QString &errorText) const
{
    return name == errorName && pattern.match(errorText).hasMatch();
}

const QList<DocumentedError> &documentedErrors()
{
    static const QList<DocumentedError> errors = readErrors();
    return errors;
}

bool isDocumentedError(const QString &interface, const QString &member, const QString &errorName,
                       const QString &errorText)
{
    const QList<DocumentedError> &errors = documentedErrors();
    return std::any_of(errors.begin(), errors.end(), [&](const DocumentedError &error) {
        return (error.interface == QLatin1String("*") ||
                (error.interface == interface && error.member == member)) &&
               error.isSent && error.matches(errorName, errorText);
    });
}
