#include "documentedarguments.h"

#include "files.h"
#include "introspection.h"

#include <QDir>
#include <QRegularExpression>

namespace
{
QMap<QString, QString> readKeys(const QString &text)
{
    QMap<QString, QString> keys;
    for (const QString &key : text.split(QLatin1Char(','), Qt::SkipEmptyParts))
        keys.insert(key.section(QLatin1Char(' '), 0, 0), key.section(QLatin1Char(' '), 1));
    return keys;
}

QList<DocumentedArgument> readArguments()
{
    QList<DocumentedArgument> arguments;
    const QString text = QString::fromUtf8(readFile(QStringLiteral(DOCUMENTED_ARGUMENTS)));
    for (const QString &line : text.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        const QStringList parts = line.split(QLatin1Char('\t'));
        arguments << DocumentedArgument{parts.value(0), parts.value(1),          parts.value(2),
                                        parts.value(3), parts.value(4),          parts.value(5),
                                        parts.value(6), readKeys(parts.value(7))};
    }
    if (arguments.isEmpty())
        qFatal("no list of documented arguments");
    return arguments;
}
} // namespace

QStringList DocumentedArgument::choices() const
{
    static const QRegularExpression names(QStringLiteral("\\A\\w+(, \\w+)+\\z"));
    return names.match(range).hasMatch() ? range.split(QStringLiteral(", ")) : QStringList();
}

const QList<DocumentedArgument> &documentedArguments()
{
    static const QList<DocumentedArgument> arguments = readArguments();
    return arguments;
}

QStringList documentedInterfaces(const QString &path)
{
    const QDir documents(QStringLiteral(INTROSPECTION_DOCUMENTS));
    QStringList interfaces;
    for (const QString &file : documents.entryList({QStringLiteral("*.xml")}, QDir::Files)) {
        if (readIntrospection(readFile(documents.filePath(file))).path == path)
            interfaces << file.section(QLatin1Char('.'), -2, -2);
    }
    interfaces.sort();
    return interfaces;
}
