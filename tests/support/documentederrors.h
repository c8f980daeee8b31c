#ifndef DOCUMENTEDERRORS_H
#define DOCUMENTEDERRORS_H

#include <QList>
#include <QRegularExpression>
#include <QString>

/** An error that the introspection documents list. */
struct DocumentedError {
    /** "*" for every one. */
    QString interface;
    QString member;
    QString name;
    /** As the document shows it, a name in {} standing for any text. */
    QString text;
    /** Whether the daemon has a reason to send it. */
    bool isSent;
    QRegularExpression pattern;

    /** Whether @p errorName and @p errorText are this one. */
    bool matches(const QString &errorName, const QString &errorText) const;
};

/** All of them, as tools/apidocument prints them. */
const QList<DocumentedError> &documentedErrors();

/** Whether clients of @p member of @p interface are told of this error. */
bool isDocumentedError(const QString &interface, const QString &member, const QString &errorName,
                       const QString &errorText);

#endif
