#ifndef FAILUREREASON_H
#define FAILUREREASON_H

#include <QString>
#include <QStringList>

/** Observations during a connect or a scan. */
struct FailureFacts {
    /** The first word of the command: "ethernet", "wifi" or "ap". */
    QString group;
    /** The states that the daemon announced, and the states of ConnMan's service. */
    QStringList states;
    /** The "Error" of the network's ConnMan service; empty if there was none. */
    QString error;
    /** True if ConnMan listed the network. Always true for a scan, which names no network. */
    bool isListed;
    bool isConnmanThere;
};

/**
 * Returns the reason of a failed connect or scan in a few words; empty if the reason is unknown.
 * Pure.
 */
QString failureReason(const FailureFacts &facts);

/**
 * Returns true if ConnMan's Wi-Fi service at @p path belongs to the network with that name. Pure.
 */
bool isServiceOf(const QString &path, const QString &network);

#endif
