// Uses what Qt 5.4 has not, and is never run: what tools/qt-newer must find.

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QString>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QString folder = QDir::tempPath().trimmed();
    qInfo() << folder;
    for (const QString &piece : folder.split(QLatin1Char('/'), Qt::SkipEmptyParts))
        qDebug() << piece.chopped(1);
    return QDir(folder).isEmpty() ? 1 : 0;
}
