#include "virtualscreen.h"

#include "deadline.h"

VirtualScreen::~VirtualScreen()
{
    // After SIGTERM it removes its socket.
    m_server.terminate();
    m_server.waitForFinished();
}

bool VirtualScreen::start(const QString &keyFile)
{
    QStringList arguments{"-displayfd",   "1",         "-screen", "0",
                          "1400x1000x24", "-nolisten", "tcp",     "-noreset"};
    if (!keyFile.isEmpty())
        arguments << QStringLiteral("-auth") << keyFile;
    m_server.start(QStringLiteral("Xvfb"), arguments);
    // It prints its display number when it listens.
    while (!m_server.canReadLine()) {
        if (!m_server.waitForReadyRead(deadlineMs))
            return false;
    }
    m_name = ':' + QString::fromLatin1(m_server.readLine().trimmed());
    return true;
}

QByteArray VirtualScreen::newKey()
{
    const auto counted = [](const QByteArray &text) {
        return char(text.size() / 256) + QByteArray(1, char(text.size() % 256)) + text;
    };
    const QByteArray anyHost("\xff\xff", 2);
    return anyHost + counted({}) + counted({}) + counted("MIT-MAGIC-COOKIE-1") +
           counted("0123456789abcdef");
}
