#include "deadline.h"
#include "drawing.h"
#include "files.h"
#include "virtualscreen.h"

#include <QApplication>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

#include <utility>

/** The panel as a program, in the instrument that ./run starts. */
class TestPanelWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void clicksInAWindowReachTheInstrument();
    void aFaultIsChosenFromTheMenu();
    void anOrdinaryUserOpensAWindow();
    void aViewerReachesThePanelOverTheNetwork();
    void picturesNeedNoDisplay();
    void wrongOptionsAndFailedCommandsAreReported();
    void theCommandLineIsChecked_data();
    void theCommandLineIsChecked();
    void aFailedCommandLeavesThePictureAsItWas();
    void thePicturesInTheDocumentsAreUpToDate_data();
    void thePicturesInTheDocumentsAreUpToDate();

private:
    class ShownPanel;

    static QStringList command(const QStringList &words);
    static QStringList arguments(const QString &script);
    static QByteArray output(const QString &script);
    static QByteArray xdotool(const QStringList &arguments);
    static QStringList visibleWindows();
    static QString nextWindow(const QStringList &known);
    static int heightOf(const QString &window);
    static bool click(const QString &window, const QPoint &place);
    static int largestDifference(const QImage &one, const QImage &other);
    static QRect placeOfText(const QString &element);
    static bool reads(const QImage &picture, const QString &element, const QString &text);
    static void theStatesOfARealConnectAreRead(const QImage &picture);
};

/** Arguments of RUN, which starts the instrument like ./run. */
QStringList TestPanelWindow::command(const QStringList &words)
{
    return QString::fromLocal8Bit(qgetenv("WORLD_OPTIONS")).split(' ') + words;
}

QStringList TestPanelWindow::arguments(const QString &script)
{
    return QString::fromLocal8Bit(qgetenv("WORLD_OPTIONS")).split(' ') +
           QStringList{TREE "/simulator/instrument", "sh", "-c", "cd " TREE ";" + script};
}

/** The output of a script in a new instrument. */
QByteArray TestPanelWindow::output(const QString &script)
{
    QProcess world;
    world.start(TREE "/simulator/world", arguments(script));
    if (!world.waitForFinished(deadlineMs))
        return "no end";
    return world.readAllStandardOutput();
}

QByteArray TestPanelWindow::xdotool(const QStringList &arguments)
{
    QProcess tool;
    tool.start("xdotool", arguments);
    return tool.waitForFinished(deadlineMs) ? tool.readAllStandardOutput() : QByteArray();
}

/** The windows and open menus of the panel. */
QStringList TestPanelWindow::visibleWindows()
{
    return QString::fromLatin1(xdotool({"search", "--onlyvisible", "--class", "panel"}))
        .split('\n', Qt::SkipEmptyParts);
}

/** Waits for a window that is not one of @p known; returns an empty string on a timeout. */
QString TestPanelWindow::nextWindow(const QStringList &known)
{
    QStringList windows;
    const auto isThere = [&] {
        windows = visibleWindows();
        for (const QString &window : known)
            windows.removeAll(window);
        return !windows.isEmpty();
    };
    return QTest::qWaitFor(isThere, deadlineMs) ? windows.first() : QString();
}

int TestPanelWindow::heightOf(const QString &window)
{
    const QByteArray geometry = xdotool({"getwindowgeometry", "--shell", window});
    return QRegularExpression("HEIGHT=(\\d+)").match(geometry).captured(1).toInt();
}

bool TestPanelWindow::click(const QString &window, const QPoint &place)
{
    return QProcess::execute("xdotool",
                             {"mousemove", "--window", window, QString::number(place.x()),
                              QString::number(place.y()), "click", "1"}) == 0;
}

/** A panel of 1280x800 in a window on its own X server. */
class TestPanelWindow::ShownPanel
{
public:
    /** Returns the window; empty if it does not appear. */
    QString show()
    {
        if (!m_screen.start())
            return {};
        qputenv("DISPLAY", m_screen.name().toLatin1());
        const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
        qunsetenv("QT_QPA_PLATFORM");
        m_process.start(RUN, command({"--handle", handle(), "--panel", "--size", "1280x800"}));
        qputenv("QT_QPA_PLATFORM", platform);
        return nextWindow({});
    }

    /** Returns the path of the handle, by which other commands join the panel's instrument. */
    QString handle() const { return m_directory.path() + "/handle"; }

    /** Returns false if the panel does not end when asked. */
    bool end()
    {
        qunsetenv("DISPLAY");
        m_process.terminate();
        return m_process.waitForFinished(deadlineMs);
    }

private:
    VirtualScreen m_screen;
    QTemporaryDir m_directory;
    QProcess m_process;
};

void TestPanelWindow::clicksInAWindowReachTheInstrument()
{
    ShownPanel panel;
    const QString window = panel.show();
    QVERIFY(!window.isEmpty());
    const Drawing drawing{DRAWING};
    QCOMPARE(drawing.size(), QSizeF(1280, 800));
    const auto press = [&](const QString &element) {
        return click(window, drawing.bounds(element).center().toPoint());
    };
    // Join the panel's instrument; the board's files show the effects of the clicks.
    QProcess world;
    world.start(RUN, command({"--handle", panel.handle(), "--", "sh", "-c",
                              "until [ \"$(cat /run/strandel-board/storage/SD/inserted)\" = 1 ]; "
                              "do sleep 0.02; done; echo inserted; "
                              "while pidof KyBoardManager >/dev/null; do sleep 0.02; done; "
                              "echo killed; until started=$(cat /run/KyBoardManager.pid); "
                              "do sleep 0.02; done; echo started; "
                              "until now=$(cat /run/KyBoardManager.pid) && [ $now != $started ]; "
                              "do sleep 0.02; done; echo restarted"}));
    QVERIFY(press("SD-hand"));
    QTRY_VERIFY_WITH_TIMEOUT(world.canReadLine(), deadlineMs);
    QCOMPARE(world.readLine(), QByteArray("inserted\n"));
    QVERIFY(press("daemon-kill"));
    QTRY_VERIFY_WITH_TIMEOUT(world.canReadLine(), deadlineMs);
    QCOMPARE(world.readLine(), QByteArray("killed\n"));
    QVERIFY(press("daemon-start"));
    QTRY_VERIFY_WITH_TIMEOUT(world.canReadLine(), deadlineMs);
    QCOMPARE(world.readLine(), QByteArray("started\n"));
    QVERIFY(press("daemon-restart"));
    QTRY_VERIFY_WITH_TIMEOUT(world.canReadLine(), deadlineMs);
    QCOMPARE(world.readLine(), QByteArray("restarted\n"));
    QVERIFY(world.state() == QProcess::NotRunning || world.waitForFinished(deadlineMs));
    QVERIFY(panel.end());
}

void TestPanelWindow::aFaultIsChosenFromTheMenu()
{
    ShownPanel panel;
    const QString window = panel.show();
    QVERIFY(!window.isEmpty());
    QProcess world;
    world.start(RUN, command({"--handle", panel.handle(), "--", "sh", "-c",
                              "kyboardctl temperature list; "
                              "until [ -s /run/strandel-board/faults/* ]; do sleep 0.02; done; "
                              "cd /run/strandel-board/faults; head *; "
                              "kyboardctl temperature list 2>/dev/null || echo failed; "
                              "while [ -e * ]; do sleep 0.02; done; kyboardctl temperature list"}));
    const QByteArray temperatures = "ANALOG_CHAIN  38 \u00b0C\nSOM           42 \u00b0C\n";
    QByteArray said;
    const auto says = [&](const QByteArray &text) {
        const bool isComplete = QTest::qWaitFor(
            [&] {
                said += world.readAllStandardOutput();
                return said.size() >= text.size();
            },
            deadlineMs);
        return isComplete && std::exchange(said, QByteArray()) == text;
    };
    QVERIFY2(says(temperatures), said);

    QStringList known = visibleWindows();
    const auto openMenu = [&](const QString &parent, const QPoint &place) {
        const bool isClicked = click(parent, place);
        const QString menu = isClicked ? nextWindow(known) : QString();
        known << menu;
        return menu;
    };
    const QPoint button = Drawing{DRAWING}.bounds("faults").center().toPoint();
    const QString classes = openMenu(window, button);
    QVERIFY(!classes.isEmpty());
    // The last entry is KyTemperature, which has one operation; the first choice is "fails".
    const QString operations = openMenu(classes, {20, heightOf(classes) - 10});
    QVERIFY(!operations.isEmpty());
    const QString choices = openMenu(operations, {20, heightOf(operations) / 2});
    QVERIFY(!choices.isEmpty());
    QVERIFY(click(choices, {20, 10}));
    QVERIFY2(says("always\nfailed\n"), said);

    // Move the mouse away from everything that has a tooltip: a tooltip is a window, too.
    xdotool({"mousemove", "--window", window, "5", "5"});
    // The first entry removes all faults.
    QTRY_COMPARE_WITH_TIMEOUT(visibleWindows(), QStringList{window}, deadlineMs);
    known = visibleWindows();
    const QString again = openMenu(window, button);
    QVERIFY(!again.isEmpty());
    QVERIFY(click(again, {20, 10}));
    QVERIFY2(says(temperatures), said);
    QVERIFY(world.state() == QProcess::NotRunning || world.waitForFinished(deadlineMs));
    QVERIFY(panel.end());
}

void TestPanelWindow::anOrdinaryUserOpensAWindow()
{
    const QTemporaryDir directory;
    const QString key = directory.path() + "/key";
    writeFile(key, VirtualScreen::newKey());
    VirtualScreen screen;
    QVERIFY(screen.start(key));
    qputenv("DISPLAY", screen.name().toLatin1());
    // The test, too, needs the key: it asks the X server for its windows.
    qputenv("XAUTHORITY", key.toLocal8Bit());
    QStringList options = command({"--handle", directory.path() + "/handle", "--panel"});
    QStringList program{RUN};
    if (::geteuid() == 0) {
        // Start the panel as the user nobody. That user gets the key below, and finds the tree at
        // /srv: the directories above the tree can be root's alone.
        options.replaceInStrings(TREE "/", "/srv/");
        program =
            QStringList{"unshare",
                        "--mount",
                        "sh",
                        "-c",
                        "mount --bind " TREE " /srv && cd /srv && exec setpriv --reuid=nobody "
                        "--regid=nogroup --clear-groups \"$@\"",
                        "sh",
                        QStringLiteral(RUN).replace(TREE "/", "/srv/")};
        QCOMPARE(QProcess::execute("chown", {"-R", "nobody", directory.path()}), 0);
    }
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    qunsetenv("QT_QPA_PLATFORM");
    QProcess panel;
    panel.start(program.takeFirst(), program + options);
    qputenv("QT_QPA_PLATFORM", platform);
    const QString window = nextWindow({});
    QVERIFY2(!window.isEmpty(), panel.readAllStandardError());
    QCOMPARE(xdotool({"getwindowname", window}), QByteArray("Strandel, virtual instrument\n"));
    // The handle holds the PID of the process that started the world.
    const QByteArray world = readFile(directory.path() + "/handle").trimmed();
    const QByteArray status = readFile("/proc/" + world + "/status");
    QVERIFY(status.contains("\nUid:\t"));
    QVERIFY(!status.contains("\nUid:\t0\t"));
    qunsetenv("DISPLAY");
    qunsetenv("XAUTHORITY");
    panel.terminate();
    QVERIFY(panel.waitForFinished(deadlineMs));
}

void TestPanelWindow::aViewerReachesThePanelOverTheNetwork()
{
    // A VNC server sends its greeting before the client sends anything.
    QCOMPARE(output("QT_QPA_PLATFORM=vnc panel >/dev/null 2>&1 & "
                    "until grep -q :170C /proc/net/tcp /proc/net/tcp6; do sleep 0.02; done; "
                    "touch /tmp/said; until [ -s /tmp/said ]; do sleep 0.02; done | "
                    "simulator/port 5900 >/tmp/said; head -c 4 /tmp/said; kill $!"),
             QByteArray("RFB "));
}

void TestPanelWindow::picturesNeedNoDisplay()
{
    QTemporaryDir directory;
    QProcess run;
    run.setWorkingDirectory(directory.path());
    // The kernel may report the lost carrier up to a second late: wait for the report.
    const QString script = "daemon kill; ethernet unplug; wifi mute; until [ $(cat "
                           "/sys/class/net/socket/carrier) = 0 ]; do sleep 0.02; done";
    run.start(RUN, command({"--handle", directory.path() + "/handle", "--picture", "panel.png",
                            "--size", "640x400", "--", "sh", "-c", script}));
    QVERIFY(run.waitForFinished(deadlineMs));
    QCOMPARE(run.exitCode(), 0);
    const QImage image(directory.path() + "/panel.png", "PNG");
    QCOMPARE(image.size(), QSize(640, 400));
    // The daemon is away; its surroundings are still shown.
    QVERIFY(reads(image, "daemon-text", "away"));
    QVERIFY(reads(image, "cable-text", "Plug the cable in"));
    QVERIFY(!reads(image, "cable-text", "Pull the cable"));
    QVERIFY(reads(image, "dhcp-text", "Mute DHCP server"));
    QVERIFY(!reads(image, "dhcp-text", "Unmute DHCP server"));
    QVERIFY(reads(image, "wifi-dhcp-text", "Unmute DHCP server"));
}

void TestPanelWindow::wrongOptionsAndFailedCommandsAreReported()
{
    QCOMPARE(output("for size in 10x10 640x10 10x640 640x10001 10001x640 640 640x400x1 wide; do "
                    "panel --picture - --size $size 2>&1; echo $?; done; "
                    "panel --picture - -- sh -c 'echo no >&2; exit 3' 2>&1; echo $?; "
                    "panel --picture /none/file 2>&1; echo $?; "
                    "env -u QT_QPA_PLATFORM -u DISPLAY panel 2>&1"),
             QByteArray("panel: --size is as in 1280x800\n1\n").repeated(8) +
                 "panel: no\n1\n"
                 "panel: cannot write /none/file\n1\n"
                 "panel: there is no display; --picture FILE needs none, nor does "
                 "QT_QPA_PLATFORM=vnc (docs/your-application.md)\n");
}

void TestPanelWindow::theCommandLineIsChecked_data()
{
    QTest::addColumn<QString>("complaint");
    QTest::newRow("--picture") << "instrument: --picture needs a value";
    QTest::newRow("--panel --size") << "instrument: --size needs a value";
    QTest::newRow("--panel -- true") << "instrument: the panel is a command of its own";
    QTest::newRow("--size 640x400 true") << "instrument: the panel is a command of its own";
    QTest::newRow("--picture /none/none/file") << "realpath: ";
}

void TestPanelWindow::theCommandLineIsChecked()
{
    QFETCH(QString, complaint);
    QProcess run;
    run.start(RUN, command(QString(QTest::currentDataTag()).split(' ')));
    QVERIFY(run.waitForFinished(deadlineMs));
    QCOMPARE(run.exitCode(), 2);
    const QString said = QString::fromUtf8(run.readAllStandardError());
    QVERIFY2(said.startsWith(complaint), qPrintable(said));
    QCOMPARE(run.readAllStandardOutput(), QByteArray());
}

void TestPanelWindow::aFailedCommandLeavesThePictureAsItWas()
{
    const QTemporaryDir directory;
    const QString file = directory.path() + "/panel.png";
    writeFile(file, "before");
    QProcess run;
    run.start(RUN, command({"--handle", directory.path() + "/handle", "--size", "640x400",
                            "--picture", file, "--", "sh", "-c", "exit 3"}));
    QVERIFY(run.waitForFinished(deadlineMs));
    QCOMPARE(run.exitCode(), 1);
    QVERIFY(run.readAllStandardError().contains("panel: ended with status 3\n"));
    QCOMPARE(readFile(file), QByteArray("before"));
    QVERIFY(!QFile::exists(file + ".part"));
}

/** Compares small squares, which tolerate slightly different text rendering. */
int TestPanelWindow::largestDifference(const QImage &one, const QImage &other)
{
    const QSize squares = one.size() / 8;
    const QImage coarse = one.scaled(squares, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const QImage otherCoarse =
        other.scaled(squares, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    int largest = 0;
    for (int y = 0; y < squares.height(); ++y) {
        for (int x = 0; x < squares.width(); ++x) {
            const QColor a = coarse.pixelColor(x, y);
            const QColor b = otherCoarse.pixelColor(x, y);
            largest = std::max({largest, std::abs(a.red() - b.red()),
                                std::abs(a.green() - b.green()), std::abs(a.blue() - b.blue())});
        }
    }
    return largest;
}

/**
 * The rectangle of a text in the drawing. Its width is a guess, but wide enough to distinguish the
 * texts that this element can show.
 */
QRect TestPanelWindow::placeOfText(const QString &element)
{
    QDomDocument document;
    document.setContent(readFile(DRAWING));
    const QDomNodeList texts = document.elementsByTagName("text");
    for (int index = 0; index < texts.size(); ++index) {
        const QDomElement text = texts.at(index).toElement();
        if (text.attribute("id") != element)
            continue;
        const QString anchor = text.attribute("text-anchor");
        const bool isAtEnd = anchor == "end";
        const int size = text.attribute("font-size").toInt();
        const int width = isAtEnd ? 50 : anchor == "middle" ? 140 : 220;
        const int x = int(text.attribute("x").toDouble()) - (isAtEnd              ? width
                                                             : anchor == "middle" ? width / 2
                                                                                  : 0);
        return {x, int(text.attribute("y").toDouble()) - size, width, size * 5 / 4};
    }
    return {};
}

/** Returns true if the element has this text: its pixels equal those of the text drawn again. */
bool TestPanelWindow::reads(const QImage &picture, const QString &element, const QString &text)
{
    Drawing drawing{DRAWING};
    Look look;
    look.texts[element] = text;
    drawing.apply(look);
    const double scale = picture.width() / drawing.size().width();
    const QRect place = QTransform::fromScale(scale, scale).mapRect(placeOfText(element));
    return !place.isEmpty() && drawing.render(picture.size()).copy(place) ==
                                   picture.convertToFormat(QImage::Format_RGB32).copy(place);
}

void TestPanelWindow::theStatesOfARealConnectAreRead(const QImage &picture)
{
    QVERIFY(reads(picture, "WIFI-state", "online"));
    QVERIFY(reads(picture, "WIFI-trail", "association \u2192 configuration \u2192 online"));
    QVERIFY(!reads(picture, "WIFI-trail", "association \u2192 online"));
    QVERIFY(reads(picture, "strength-text", "72 %"));
    // Ethernet was connected before the panel started: the panel knows no earlier states.
    QVERIFY(reads(picture, "Ethernet-state", "online"));
    QVERIFY(reads(picture, "Ethernet-trail", ""));
}

void TestPanelWindow::thePicturesInTheDocumentsAreUpToDate_data()
{
    QTest::addColumn<QString>("picture");
    QTest::newRow("new") << "panel-new";
    QTest::newRow("in use") << "panel";
}

void TestPanelWindow::thePicturesInTheDocumentsAreUpToDate()
{
    QFETCH(QString, picture);
    const QImage drawn = QImage::fromData(output("tools/picture " + picture), "PNG");
    QVERIFY(!drawn.isNull());
    const QString file = TREE "/docs/pictures/" + picture + ".png";
    const QImage shown(file);
    QVERIFY(!shown.isNull());
    QCOMPARE(drawn.size(), shown.size());
    const int difference = largestDifference(drawn, shown);
    if (difference > 24)
        drawn.save(QDir::current().filePath(picture + ".png"));
    if (picture == "panel")
        theStatesOfARealConnectAreRead(drawn);
    QVERIFY2(difference <= 24,
             qPrintable(QStringLiteral("a square differs by %1 (at most 24 allowed); if the new "
                                       "look is intended: ./run -- tools/picture %2 >%3")
                            .arg(difference)
                            .arg(picture, file)));
}

QTEST_MAIN(TestPanelWindow)
#include "test_panelwindow.moc"
