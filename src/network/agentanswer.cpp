#include "agentanswer.h"

#include "busvalue.h"

namespace
{
const struct {
    const char *field;
    QString Credentials::*value;
} answers[] = {
    {"Passphrase", &Credentials::passphrase},
    {"Identity", &Credentials::identity},
    {"Username", &Credentials::identity},
};

bool isMandatory(const QVariant &field)
{
    const QVariant requirement = toMap(field).value(QStringLiteral("Requirement"));
    return requirement.userType() == QMetaType::QString &&
           requirement.toString() == QLatin1String("mandatory");
}
} // namespace

QVariantMap agentAnswer(const QVariantMap &fields, const Credentials &credentials)
{
    QVariantMap answer;
    for (const auto &row : answers) {
        const QString field = QLatin1String(row.field);
        // Look up only these fields: a peer may send any number of others.
        if (isMandatory(fields.value(field)))
            answer.insert(field, credentials.*row.value);
    }
    return answer;
}
