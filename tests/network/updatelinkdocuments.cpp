#include "linkdocument.h"

#include <QFile>

#include <cstdio>

/** Updates the state machines in the given documents. */
int main(int count, char **arguments)
{
    for (int number = 1; number < count; ++number) {
        QFile file(QString::fromLocal8Bit(arguments[number]));
        if (!file.open(QIODevice::ReadWrite))
            return 1;
        const QByteArray text = withMachines(QString::fromUtf8(file.readAll())).toUtf8();
        if (!file.resize(0) || file.write(text) != text.size())
            return 1;
    }
    return 0;
}
