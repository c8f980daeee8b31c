#ifndef SCANRESULTS_H
#define SCANRESULTS_H

#include "accesspoint.h"

#include <QDBusObjectPath>
#include <QList>

/** The results of a scan, each an object of its own on the bus. */
class ScanResults
{
public:
    struct Result {
        QString directory;
        /**
         * True if the result has the name of the access point. A hidden access point has a result
         * without a name. If a client has asked for its name, it also has a result with the name.
         */
        bool isNamed;
        QDBusObjectPath path;
        QVariantMap properties;
    };

    /** The differences from the previous scan. */
    struct Difference {
        QList<Result> added;
        /** Results whose signal strength has changed. */
        QList<Result> changed;
        QList<QDBusObjectPath> removed;
    };

    /**
     * @param interfacePath the parent object of the results
     */
    explicit ScanResults(const QString &interfacePath);

    /** Scans the air, including the hidden access points with these names. */
    Difference update(const AccessPoints &air, const QList<QByteArray> &askedFor);

    QList<QDBusObjectPath> paths() const;

    /**
     * Returns the path of the result that has the name of the access point in @p directory; "/" if
     * there is none.
     */
    QDBusObjectPath pathOf(const QString &directory) const;

    /** Returns the properties of the result at @p path; empty if there is none. */
    QVariantMap properties(const QString &path) const;

private:
    void find(const Result &result, QList<Result> &results, Difference &difference);

    const QString m_interfacePath;
    QList<Result> m_results;
    int m_lastNumber = -1;
};

#endif
