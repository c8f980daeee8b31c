// Uses API newer than Qt 5.4, which tools/qt-newer must find. Never run.

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QString>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QString directory = QDir::tempPath().trimmed();
    qInfo() << directory;
    for (const QString &piece : directory.split(QLatin1Char('/'), Qt::SkipEmptyParts))
        qDebug() << piece.chopped(1);
    return QDir(directory).isEmpty() ? 1 : 0;
}
