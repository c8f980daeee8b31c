#ifndef AGENTANSWER_H
#define AGENTANSWER_H

#include <QVariantMap>

/** What a user gave to join a network; either may be empty. */
struct Credentials {
    /** The user name, for networks that ask for an identity. */
    QString identity;
    QString passphrase;
};

/**
 * The answer to a request for input.
 *
 * @param fields one map per field that is asked for, as the message holds them; read once. A field
 *        whose value is anything else counts as absent.
 * @return the stored value for each of "Passphrase", "Identity" and "Username" whose "Requirement"
 *         is "mandatory"; every other field stays without an answer
 */
QVariantMap agentAnswer(const QVariantMap &fields, const Credentials &credentials);

#endif
