#ifndef FAILUREREASON_H
#define FAILUREREASON_H

#include <QString>
#include <QStringList>

/** What was seen of a connect until its end. */
struct FailureFacts {
    /** The first word of the command: "ethernet", "wifi" or "ap". */
    QString group;
    /** The states that the daemon announced, and those of ConnMan's service. */
    QStringList states;
    /** The "Error" of ConnMan's service of the network; empty where it had none. */
    QString error;
    /** Whether ConnMan listed the network. */
    bool isListed;
    bool isConnmanThere;
};

/** Why a connect failed, in a few words; empty where nothing is known. Pure. */
QString failureReason(const FailureFacts &facts);

/** Whether ConnMan's Wi-Fi service at @p path is that of the network of that name. Pure. */
bool isServiceOf(const QString &path, const QString &network);

#endif
