#include "instrument.h"

#include <QGuiApplication>
#include <QQuickView>

// status-bar: shows the instrument's state in a bar.
int main(int argc, char *argv[])
{
    QGuiApplication application(argc, argv);
    Instrument::registerTypes();
    QQuickView view;
    view.setResizeMode(QQuickView::SizeRootObjectToView);
    view.setSource(QUrl(QStringLiteral("qrc:/StatusBar.qml")));
    if (view.status() != QQuickView::Ready)
        return 1;
    view.show();
    return QGuiApplication::exec();
}
