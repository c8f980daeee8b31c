#ifndef AGENTANSWER_H
#define AGENTANSWER_H

#include <QVariantMap>

/** A user's credentials for a network; either may be empty. */
struct Credentials {
    /** The user name, for networks that ask for an identity. */
    QString identity;
    QString passphrase;
};

/**
 * Returns the reply to ConnMan's request for input.
 *
 * @param fields one map for each requested field, as Qt D-Bus delivers it; a field whose value is
 *         not a map counts as absent
 * @return the stored value for each of "Passphrase", "Identity" and "Username" whose "Requirement"
 *         is "mandatory"; no value for other fields
 */
QVariantMap agentAnswer(const QVariantMap &fields, const Credentials &credentials);

#endif
