#include "client.h"

#include "deadline.h"

void startClient(QProcess &client, const QStringList &arguments, const QByteArray &input,
                 const QStringList &environment)
{
    client.start("env", environment + QStringList{"kyboardctl"} + arguments);
    client.write(input);
    client.closeWriteChannel();
}

ClientResult resultOf(QProcess &client)
{
    if (client.state() != QProcess::NotRunning && !client.waitForFinished(deadlineMs))
        return {-1, QString(), QStringLiteral("no end")};
    if (client.exitStatus() != QProcess::NormalExit)
        return {-1, QString(), QStringLiteral("ended by signal %1").arg(client.exitCode())};
    return {client.exitCode(), QString::fromUtf8(client.readAllStandardOutput()),
            QString::fromUtf8(client.readAllStandardError())};
}

ClientResult runClient(const QStringList &arguments, const QByteArray &input,
                       const QStringList &environment)
{
    QProcess client;
    startClient(client, arguments, input, environment);
    return resultOf(client);
}
