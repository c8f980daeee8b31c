#include "output.h"

#include "present.h"
#include "terminal.h"
#include "textrules.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

void printJson(const QJsonValue &value)
{
    // QJsonDocument holds only an array or an object: print any other value as the content of an
    // array.
    if (value.isObject()) {
        print(QString::fromUtf8(QJsonDocument(value.toObject()).toJson()));
        return;
    }
    const QByteArray array = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    print(QString::fromUtf8(array.mid(1, array.size() - 2)) + QLatin1Char('\n'));
}

ExitStatus fail(const Command &command, ExitStatus status, const QString &complaint)
{
    complain(command.words + QStringLiteral(": ") + complaint);
    return status;
}

ExitStatus fail(const Command &command, const Answer &answer)
{
    if (answer.status == OutcomeMissing)
        return fail(command, answer.status, answer.complaint);
    complain(answer.complaint, answer.detail());
    return answer.status;
}

ExitStatus printField(const Command &command, const Invocation &invocation, const QVariantMap &map)
{
    const QString field = invocation.value("--field");
    const QVariant value = map.value(field);
    if (!value.isValid()) {
        if (invocation.has("--json"))
            printJson(QJsonValue());
        const QStringList fields = map.keys();
        return fail(command, NothingThere,
                    map.contains(field)
                        ? QStringLiteral("there is nothing to tell of '%1'").arg(field)
                        : QStringLiteral("there is no field '%1' among %2")
                              .arg(shown(field), fields.join(QStringLiteral(", "))));
    }
    if (invocation.has("--json"))
        printJson(toJson(value));
    else
        show(replyText({value}));
    return Success;
}

ExitStatus tellOfNothing(const Command &command, const Invocation &invocation)
{
    if (invocation.has("--json"))
        printJson(QJsonValue());
    return fail(command, NothingThere, command.nothing);
}

ExitStatus confirm(const Command &command, const Invocation &invocation)
{
    if (command.question.isEmpty() || invocation.has("--yes"))
        return Success;
    QString question = command.question;
    question.replace(0, 1, question.at(0).toUpper());
    switch (askFor(question)) {
    case Consent::Given:
        return Success;
    case Consent::NobodyThere:
        return fail(command, NotConfirmed,
                    QStringLiteral("this would %1; without a terminal to ask at, --yes is needed")
                        .arg(command.question));
    case Consent::Refused:
        break;
    }
    return fail(command, NotConfirmed, QStringLiteral("not confirmed"));
}
