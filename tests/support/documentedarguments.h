#ifndef DOCUMENTEDARGUMENTS_H
#define DOCUMENTEDARGUMENTS_H

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

/** An argument of a method, or a property, as the introspection documents describe it. */
struct DocumentedArgument {
    QString path;
    /** The interface without the daemon's name, for example "Users". */
    QString interface;
    /** The method, or the property. */
    QString member;
    /** "in", "out" or "property". */
    QString direction;
    QString name;
    /** The type on the bus, as in "a{sv}". */
    QString type;
    /** Its range as the document describes it; empty if there is none. */
    QString range;
    /** For a map: each key with the type of its value. A key in braces stands for any key. */
    QMap<QString, QString> keys;

    /** The names of the allowed values, "SD, USB"; empty if the values are not names. */
    QStringList choices() const;
};

/** All documented arguments and properties, as tools/apidocument prints them. */
const QList<DocumentedArgument> &documentedArguments();

/** The daemon's interfaces at @p path, without the daemon's name, sorted. */
QStringList documentedInterfaces(const QString &path);

#endif
