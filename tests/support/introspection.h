#ifndef INTROSPECTION_H
#define INTROSPECTION_H

#include <QMap>
#include <QString>
#include <QStringList>

/** The introspection data of an object. */
struct Introspection {
    /** The path that the document names; empty in a reply of the object itself. */
    QString path;
    /**
     * The members of each interface, sorted: "method isMounted(in s device, out b)", "signal
     * userChanged(out s user)", "property batteryStatus s read". Results of methods have no names.
     */
    QMap<QString, QStringList> interfaces;
    /** The reason why the document cannot be read; empty on success. */
    QString error;
};

/** Parses the introspection document @p document. */
Introspection readIntrospection(const QByteArray &document);

/** Introspects the daemon's object at @p path. */
Introspection introspect(const QString &path);

#endif
