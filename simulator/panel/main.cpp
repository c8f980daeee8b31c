#include "hands.h"
#include "panelwidget.h"
#include "panelwindow.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QFile>

#include <iostream>
#include <memory>

namespace
{
constexpr int complain = 1;

int fail(const QString &complaint)
{
    std::cerr << "panel: " << qPrintable(complaint) << '\n';
    return complain;
}

/** Parses "WIDTHxHEIGHT", each from 100 to 10000; returns an empty size for anything else. */
QSize sizeOf(const QString &text)
{
    const QStringList numbers = text.split(QLatin1Char('x'));
    const QSize size(numbers.value(0).toInt(), numbers.value(1).toInt());
    const bool isGood = numbers.size() == 2 && size.width() >= 100 && size.height() >= 100 &&
                        size.width() <= 10000 && size.height() <= 10000;
    return isGood ? size : QSize();
}

/** Waits until the daemon has answered everything; returns false on a timeout. */
bool waitUntilComplete(const PanelWidget &panel)
{
    QElapsedTimer waited;
    waited.start();
    while (!panel.isComplete() && waited.elapsed() < 20000)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return panel.isComplete();
}

/** Runs a command, if there is one, and writes the picture as PNG. */
int takePicture(PanelWidget &panel, const QStringList &command, const QString &path,
                const QSize &size)
{
    // The panel must be subscribed before the command causes signals.
    bool isComplete = waitUntilComplete(panel);
    if (isComplete && !command.isEmpty()) {
        panel.run(shellCommand(command));
        while (panel.isBusy())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (!panel.instrument().complaint.isEmpty())
            return fail(panel.instrument().complaint);
        panel.askAgain();
        isComplete = waitUntilComplete(panel);
    }
    if (!isComplete)
        return fail(QStringLiteral("the daemon does not answer"));
    QFile file(path);
    const bool isOpen = path == QLatin1String("-") ? file.open(stdout, QIODevice::WriteOnly)
                                                   : file.open(QIODevice::WriteOnly);
    if (!isOpen || !panel.picture(size).save(&file, "PNG") || !file.flush())
        return fail(QStringLiteral("cannot write ") + path);
    return 0;
}
} // namespace

int main(int argc, char *argv[])
{
    bool isPicture = false;
    for (int index = 1; index < argc; ++index)
        isPicture = isPicture || QByteArray(argv[index]).startsWith("--picture");
    if (isPicture) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    } else if (!qEnvironmentVariableIsSet("DISPLAY") &&
               !qEnvironmentVariableIsSet("WAYLAND_DISPLAY") &&
               !qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        return fail(QStringLiteral("there is no display; --picture FILE needs none, nor does "
                                   "QT_QPA_PLATFORM=vnc (%1/your-application.md)")
                        .arg(qEnvironmentVariable("INSTRUMENT_DOCUMENTS", QStringLiteral("docs"))));
    }
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("panel"));
    QCommandLineParser options;
    options.setApplicationDescription(
        QStringLiteral("The front panel of the virtual instrument, in its world."));
    options.addHelpOption();
    const QCommandLineOption picture(
        QStringLiteral("picture"),
        QStringLiteral("Write a PNG of the panel (-: to stdout) and end."), QStringLiteral("FILE"));
    const QCommandLineOption size(
        QStringLiteral("size"), QStringLiteral("Width and height of picture or panel, in pixels."),
        QStringLiteral("WxH"));
    options.addOptions({picture, size});
    options.addPositionalArgument(QStringLiteral("command"),
                                  QStringLiteral("What to run before the picture is taken."),
                                  QStringLiteral("[-- COMMAND...]"));
    options.process(application);

    auto panel = std::make_unique<PanelWidget>(QStringLiteral(":/panel.svg"));
    if (!panel->isGood())
        return fail(QStringLiteral("panel.svg is no drawing"));
    QSize wanted = panel->sizeHint();
    if (options.isSet(size)) {
        wanted = sizeOf(options.value(size));
        if (wanted.isEmpty())
            return fail(QStringLiteral("--size is as in 1280x800"));
    }
    if (options.isSet(picture))
        return takePicture(*panel, options.positionalArguments(), options.value(picture), wanted);

    PanelWindow window(panel.release(), wanted);
    window.show();
    return QApplication::exec();
}
