#ifndef CLIENT_H
#define CLIENT_H

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>

/** What kyboardctl ended with, and what it printed. */
struct ClientResult {
    /** -1 where it did not end in time. */
    int status;
    QString output;
    QString complaint;
};

/**
 * Runs kyboardctl to its end.
 *
 * @param input the whole of its standard input, which is no terminal
 * @param environment as in "NO_COLOR=1"
 */
ClientResult runClient(const QStringList &arguments, const QByteArray &input = {},
                       const QStringList &environment = {});

/** Starts kyboardctl in @p client, with all of its standard input. */
void startClient(QProcess &client, const QStringList &arguments, const QByteArray &input = {},
                 const QStringList &environment = {});

/** Waits for the end of @p client. */
ClientResult resultOf(QProcess &client);

#endif
