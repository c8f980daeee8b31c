#ifndef DOCUMENTEDERRORS_H
#define DOCUMENTEDERRORS_H

#include <QList>
#include <QRegularExpression>
#include <QString>

/** An error that the introspection documents list. */
struct DocumentedError {
    /** "*" for every interface. */
    QString interface;
    QString member;
    QString name;
    /** As in the document; a name in {} stands for any text. */
    QString text;
    /** True if the daemon can send it. */
    bool isSent;
    QRegularExpression pattern;

    /** Returns true if @p errorName and @p errorText match this error. */
    bool matches(const QString &errorName, const QString &errorText) const;
};

/** All documented errors, as tools/apidocument prints them. */
const QList<DocumentedError> &documentedErrors();

/** Returns true if the documents list this error for @p member of @p interface as sent. */
bool isDocumentedError(const QString &interface, const QString &member, const QString &errorName,
                       const QString &errorText);

#endif
