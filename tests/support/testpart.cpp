#include "testpart.h"

#include <QMetaMethod>

namespace
{
bool isTestFunction(const QMetaMethod &method)
{
    const QByteArray name = method.name();
    return method.methodType() == QMetaMethod::Slot && method.access() == QMetaMethod::Private &&
           method.parameterCount() == 0 && !name.endsWith("_data") && name != "initTestCase" &&
           name != "cleanupTestCase" && name != "init" && name != "cleanup";
}
} // namespace

QStringList argumentsOfPart(const QMetaObject &test, const QStringList &arguments,
                            const QString &part)
{
    const int number = part.section('/', 0, 0).toInt();
    const int parts = part.section('/', 1).toInt();
    if (part.isEmpty() || arguments.size() > 1)
        return arguments;
    if (number < 1 || number > parts)
        qFatal("there is no part %s", qPrintable(part));
    QStringList chosen = arguments;
    int count = 0;
    for (int index = test.methodOffset(); index < test.methodCount(); ++index) {
        if (isTestFunction(test.method(index)) && count++ % parts == number - 1)
            chosen << QString::fromLatin1(test.method(index).name());
    }
    if (chosen.size() == arguments.size())
        qFatal("part %s has no functions", qPrintable(part));
    return chosen;
}
