#ifndef INTROSPECTION_H
#define INTROSPECTION_H

#include <QMap>
#include <QString>
#include <QStringList>

/** What an introspection document says of an object. */
struct Introspection {
    /** The path that the document gives the object; empty in an answer of the object itself. */
    QString path;
    /**
     * The members of each interface, sorted: "method isMounted(in s device, out b)", "signal
     * userChanged(out s user)", "property batteryStatus s read". Results of methods are without
     * their names.
     */
    QMap<QString, QStringList> interfaces;
    /** Why the document cannot be read; empty where it can. */
    QString error;
};

/** Reads the introspection document @p document. */
Introspection readIntrospection(const QByteArray &document);

/** Asks the object at @p path of the daemon for its introspection document. */
Introspection introspect(const QString &path);

#endif
