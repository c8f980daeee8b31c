#ifndef SCANRESULTS_H
#define SCANRESULTS_H

#include "accesspoint.h"

#include <QDBusObjectPath>
#include <QList>

/** What a scan has found, each an object of its own on the bus. */
class ScanResults
{
public:
    struct Result {
        QString directory;
        /** A hidden access point that was asked for by its name is found once more, with it. */
        bool isNamed;
        QDBusObjectPath path;
        QVariantMap properties;
    };

    /** What is different after a scan. */
    struct Difference {
        QList<Result> added;
        /** The same objects with another signal. */
        QList<Result> changed;
        QList<QDBusObjectPath> removed;
    };

    /** @param interfacePath the object below which the results are */
    explicit ScanResults(const QString &interfacePath);

    /** Scans the air, asking for the access points of these names, too. */
    Difference update(const AccessPoints &air, const QList<QByteArray> &askedFor);

    QList<QDBusObjectPath> paths() const;

    /** The object of that access point, by its name where there is one; "/" without. */
    QDBusObjectPath pathOf(const QString &directory) const;

    /** Empty where there is no such object. */
    QVariantMap properties(const QString &path) const;

private:
    void find(const Result &result, QList<Result> &results, Difference &difference);

    const QString m_interfacePath;
    QList<Result> m_results;
    int m_lastNumber = -1;
};

#endif
