#ifndef NOTIFYSOCKET_H
#define NOTIFYSOCKET_H

#include "deadline.h"

#include <QString>

/** Receives the daemon's pings in place of systemd. */
class NotifySocket
{
public:
    NotifySocket() = default;
    ~NotifySocket();
    NotifySocket(const NotifySocket &) = delete;
    NotifySocket &operator=(const NotifySocket &) = delete;

    /**
     * Listens at @p name, a path or "@" and an abstract name, as in NOTIFY_SOCKET. Returns false if
     * the socket cannot be bound.
     */
    bool listen(const QString &name);

    /** Closes the socket and removes its file. */
    void close();

    /** Takes the next message. Returns false if no ping arrives within @p timeoutMs. */
    bool takePing(int timeoutMs = deadlineMs);

    /** The file descriptor of the socket; -1 if it is closed. */
    int descriptor() const { return m_socket; }

private:
    int m_socket = -1;
    QByteArray m_file;
};

#endif
