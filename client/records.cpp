#include "records.h"

#include "output.h"
#include "recordfile.h"
#include "textrules.h"

#include <QFile>
#include <QSaveFile>

namespace
{
const QString deviceObject = QString::fromLatin1(devicePath);
const QString version = QStringLiteral("Version");

/** Many times the size of a copy. Limits the read if the user names a wrong file. */
constexpr qint64 longestFileBytes = 1 << 20;

ExitStatus read(const char *method, QVariantMap &fields, Answer &answer)
{
    answer = call(deviceObject, version, QString::fromLatin1(method));
    fields = answer.values.value(0).toMap();
    return answer.status;
}

QString named(const QString &path)
{
    return QStringLiteral("'%1'").arg(shown(path));
}
} // namespace

ExitStatus dumpRecords(const Command &command, const Invocation &, const QVariantList &arguments)
{
    const QString path = arguments.value(0).toString();
    if (QFile::exists(path))
        return fail(command, BadUsage, named(path) + QStringLiteral(" exists already"));
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) ||
        !file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner))
        return fail(
            command, BadUsage,
            QStringLiteral("%1 cannot be written: %2").arg(named(path), file.errorString()));
    Records records;
    Answer answer;
    if (read("getEepromInstrument", records.instrument, answer) != Success ||
        read("getEepromMesure", records.measure, answer) != Success)
        return fail(command, answer);
    QString complaint;
    const QByteArray content = writeRecords(records, complaint);
    if (content.isEmpty())
        return fail(command, RecordInvalid, complaint + QStringLiteral("; no file is written"));
    if (file.write(content) != content.size() || !file.commit())
        return fail(
            command, OutputLost,
            QStringLiteral("%1 cannot be written: %2").arg(named(path), file.errorString()));
    return Success;
}

ExitStatus restoreRecords(const Command &command, const Invocation &invocation,
                          const QVariantList &arguments)
{
    const QString path = arguments.value(0).toString();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(command, BadUsage,
                    QStringLiteral("%1 cannot be read: %2").arg(named(path), file.errorString()));
    Records records;
    QString complaint;
    if (!readRecords(file.read(longestFileBytes), records, complaint))
        return fail(command, BadUsage, QStringLiteral("%1: %2").arg(named(path), complaint));
    const ExitStatus consent = confirm(command, invocation);
    if (consent != Success)
        return consent;
    const Answer first =
        call(deviceObject, version, QStringLiteral("setEepromInstrument"), {records.instrument});
    if (!first.isGood())
        return fail(command, first);
    const Answer second =
        call(deviceObject, version, QStringLiteral("setEepromMesure"), {records.measure});
    if (!second.isGood()) {
        fail(command, second);
        return fail(command, second.status,
                    QStringLiteral("the instrument record is written, the measure record is not"));
    }
    return Success;
}
