#include "busface.h"

BusFace::BusFace()
    : m_connman(nullptr),
      m_lively(m_connman, nullptr),
      m_calls(m_connman, nullptr),
      m_control(m_connman, m_lively, m_calls)
{
}

bool BusFace::handleMessage(const QDBusMessage &message, const QDBusConnection &)
{
    if (message.path() == Control::path)
        m_control.drive(message);
    else
        m_calls.receive(message);
    return true;
}

QString BusFace::introspect(const QString &path) const
{
    return path == Control::path ? Control::description() : QString();
}
