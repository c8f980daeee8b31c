#include "link.h"

namespace
{
const QString unknown = QStringLiteral("unknown");
const QString online = QStringLiteral("online");
constexpr int noStrength = -1;
} // namespace

Link::Link(QObject *parent) : QObject(parent), m_state(unknown), m_strength(noStrength) {}

bool Link::isOnline() const
{
    return m_state == online;
}

void Link::forget()
{
    setState(unknown);
}

void Link::beginIdle()
{
    setState(QStringLiteral("idle"));
}

void Link::takeProperty(const QString &name, const QVariant &value)
{
    if (name == QLatin1String("State"))
        setState(value.toString());
    else if (name == QLatin1String("Strength"))
        takeStrength(value.toInt());
    else if (name == QLatin1String("IPv4"))
        Q_EMIT addressWanted();
}

void Link::takeEvidence(bool isUp)
{
    // Ignore the reply if a signal has already announced a state: the signal is more reliable.
    if (isUp && m_state == unknown)
        setState(online);
}

void Link::takeAddress(const QString &address)
{
    // The link may have gone down before the reply arrived.
    const QString usable = isOnline() ? address : QString();
    if (m_address == usable)
        return;
    m_address = usable;
    Q_EMIT addressChanged();
}

void Link::takeStrength(int strength)
{
    const int usable = isOnline() ? strength : noStrength;
    if (m_strength == usable)
        return;
    m_strength = usable;
    Q_EMIT strengthChanged();
}

void Link::setState(const QString &state)
{
    if (m_state == state)
        return;
    m_state = state;
    Q_EMIT stateChanged();
    if (isOnline()) {
        Q_EMIT addressWanted();
    } else {
        takeAddress(QString());
        takeStrength(noStrength);
    }
}
