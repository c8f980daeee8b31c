#ifndef DOCUMENTEDARGUMENTS_H
#define DOCUMENTEDARGUMENTS_H

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

/** An argument of a method, or a property, as the introspection documents have it. */
struct DocumentedArgument {
    QString path;
    /** What follows the daemon's name in the name of the interface. */
    QString interface;
    /** The method, or the property. */
    QString member;
    /** "in", "out" or "property". */
    QString direction;
    QString name;
    /** The type on the bus, as in "a{sv}". */
    QString type;
    /** Its values in words; empty where the document gives none. */
    QString range;
    /** The types of the entries of a map, by their keys; a key in {} stands for any. */
    QMap<QString, QString> keys;

    /** The values, where all of them are names: "SD, USB". Empty for anything else. */
    QStringList choices() const;
};

/** All of them, as tools/apidocument prints them. */
const QList<DocumentedArgument> &documentedArguments();

/** The daemon's interfaces at @p path, without the daemon's name, sorted. */
QStringList documentedInterfaces(const QString &path);

#endif
