#include "busfault.h"

#include <QStringList>

namespace
{
const QString prefix = QStringLiteral("org.freedesktop.DBus.Error.");

bool isOneOf(const QString &errorName, const QStringList &names)
{
    return errorName.startsWith(prefix) && names.contains(errorName.mid(prefix.size()));
}

QString sentenceOfJoining(const BusFault &fault)
{
    if (fault.address.isEmpty())
        return QStringLiteral("%1 cannot be reached through ssh").arg(fault.bus);
    // If the bus policy rejects a user, the bus closes the connection and sends no reply.
    const bool isRefused =
        isOneOf(fault.errorName, {QStringLiteral("NoReply"), QStringLiteral("AuthFailed"),
                                  QStringLiteral("AccessDenied"), QStringLiteral("Disconnected")});
    return isRefused ? QStringLiteral("%1 at %2 refuses user %3")
                           .arg(fault.bus, fault.address, fault.user)
                     : QStringLiteral("%1 at %2 cannot be reached").arg(fault.bus, fault.address);
}

QString sentenceOfRefusal(const BusFault &fault)
{
    if (fault.user.isEmpty())
        return QStringLiteral("the user there may not call the board manager: only root and the "
                              "group strandel may");
    return fault.isMember
               ? QStringLiteral("the bus does not let user %1 make this call").arg(fault.user)
               : QStringLiteral("user %1 is not in group strandel, which may call the board "
                                "manager")
                     .arg(fault.user);
}
} // namespace

QString sentence(const BusFault &fault)
{
    if (!fault.isJoined)
        return sentenceOfJoining(fault);
    if (isOneOf(fault.errorName, {QStringLiteral("ServiceUnknown"),
                                  QStringLiteral("NameHasNoOwner"), QStringLiteral("NoServer")}))
        return QStringLiteral("the board manager is not on %1").arg(fault.bus);
    if (isOneOf(fault.errorName, {QStringLiteral("NoReply")}))
        return QStringLiteral("the board manager ended while it worked for this call");
    if (isOneOf(fault.errorName, {QStringLiteral("Disconnected")}))
        return QStringLiteral("%1 ended").arg(fault.bus);
    if (isOneOf(fault.errorName, {QStringLiteral("AccessDenied")}))
        return sentenceOfRefusal(fault);
    if (isOneOf(fault.errorName,
                {QStringLiteral("UnknownInterface"), QStringLiteral("UnknownObject"),
                 QStringLiteral("UnknownMethod"), QStringLiteral("UnknownProperty")}))
        return QStringLiteral("this instrument has no such interface");
    return QStringLiteral("%1 (%2)").arg(fault.errorText, fault.errorName);
}
