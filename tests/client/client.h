#ifndef CLIENT_H
#define CLIENT_H

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>

/** The exit status and output of kyboardctl. */
struct ClientResult {
    /** -1 if kyboardctl did not end in time, or if a signal ended it. */
    int status;
    QString output;
    /** What kyboardctl wrote to stderr; if the status is -1, the reason. */
    QString complaint;
};

/**
 * Runs kyboardctl to its end.
 *
 * @param input the complete standard input, which is no terminal
 * @param environment additional environment variables, for example "NO_COLOR=1"
 */
ClientResult runClient(const QStringList &arguments, const QByteArray &input = {},
                       const QStringList &environment = {});

/** Starts kyboardctl in @p client; @p input is its complete standard input. */
void startClient(QProcess &client, const QStringList &arguments, const QByteArray &input = {},
                 const QStringList &environment = {});

/** Waits until @p client ends, and returns its result. */
ClientResult resultOf(QProcess &client);

#endif
