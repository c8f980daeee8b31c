#include "scanresults.h"

#include <utility>

namespace
{
bool isSameObject(const ScanResults::Result &one, const ScanResults::Result &other)
{
    QVariantMap properties = one.properties;
    const QString signal = QStringLiteral("Signal");
    properties.insert(signal, other.properties.value(signal));
    return one.directory == other.directory && one.isNamed == other.isNamed &&
           properties == other.properties;
}
} // namespace

ScanResults::ScanResults(const QString &interfacePath) : m_interfacePath(interfacePath) {}

ScanResults::Difference ScanResults::update(const AccessPoints &air,
                                            const QList<QByteArray> &askedFor)
{
    QList<Result> results;
    Difference difference;
    for (auto entry = air.begin(); entry != air.end(); ++entry) {
        if (!entry->isInRange)
            continue;
        const QVariantMap properties = bssProperties(entry.key(), *entry, !entry->isHidden);
        find({entry.key(), !entry->isHidden, {}, properties}, results, difference);
        if (entry->isHidden && askedFor.contains(entry->ssid))
            find({entry.key(), true, {}, bssProperties(entry.key(), *entry, true)}, results,
                 difference);
    }
    for (const Result &result : std::as_const(m_results)) {
        bool isLeft = false;
        for (const Result &found : std::as_const(results))
            isLeft = isLeft || found.path == result.path;
        if (!isLeft)
            difference.removed << result.path;
    }
    m_results = results;
    return difference;
}

/**
 * Adds @p result to @p results. If the previous scan had the same result, except for its signal
 * strength, the result keeps its path; otherwise it gets a new path.
 */
void ScanResults::find(const Result &result, QList<Result> &results, Difference &difference)
{
    Result found = result;
    for (const Result &before : std::as_const(m_results)) {
        if (!isSameObject(before, found))
            continue;
        found.path = before.path;
        if (before.properties != found.properties)
            difference.changed << found;
    }
    if (found.path.path().isEmpty()) {
        found.path =
            QDBusObjectPath(QStringLiteral("%1/BSSs/%2").arg(m_interfacePath).arg(++m_lastNumber));
        difference.added << found;
    }
    results << found;
}

QList<QDBusObjectPath> ScanResults::paths() const
{
    QList<QDBusObjectPath> result;
    for (const Result &entry : std::as_const(m_results))
        result << entry.path;
    return result;
}

QDBusObjectPath ScanResults::pathOf(const QString &directory) const
{
    for (const Result &entry : std::as_const(m_results)) {
        if (entry.directory == directory && entry.isNamed)
            return entry.path;
    }
    return QDBusObjectPath(QStringLiteral("/"));
}

QVariantMap ScanResults::properties(const QString &path) const
{
    for (const Result &entry : std::as_const(m_results)) {
        if (entry.path.path() == path)
            return entry.properties;
    }
    return QVariantMap();
}
