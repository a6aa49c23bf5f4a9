#include "Desktop.h"

#include "Eventually.h"
#include "PrivateMachine.h"

#include <QFileInfo>
#include <QRegularExpression>

namespace orvex::test {

namespace {

/// Everybody on the bus may do everything; it starts no services.
constexpr auto busConfiguration = R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
    "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
    <type>session</type>
    <listen>unix:dir=%1</listen>
    <policy context="default">
        <allow send_destination="*"/>
        <allow receive_sender="*"/>
        <allow own="*"/>
    </policy>
</busconfig>
)";

QString text(int number) {
    return QString::number(number);
}

QStringList words(const char* words) {
    return QString::fromUtf8(words).split(u' ');
}

QStringList moveTo(const QPoint& place) {
    return {QStringLiteral("mousemove"), text(place.x()), text(place.y())};
}

} // namespace

Desktop::Desktop() : environment_(QProcessEnvironment::systemEnvironment()) {
    PrivateMachine::require();
    for (const char* name : {"LC_ALL", "LANGUAGE", "WAYLAND_DISPLAY", "QT_SCALE_FACTOR", "AT_SPI_BUS_ADDRESS"}) {
        environment_.remove(QString::fromUtf8(name));
    }
    environment_.insert(QStringLiteral("LANG"), QStringLiteral("C.UTF-8"));
    environment_.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    environment_.insert(QStringLiteral("QT_QPA_PLATFORMTHEME"), QString());
    const QDir home(folder_.path());
    for (const char* name :
         {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR", "TMPDIR"}) {
        const QString place = home.filePath(QString::fromUtf8(name).toLower());
        home.mkpath(place);
        QFile::setPermissions(place, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        environment_.insert(QString::fromUtf8(name), place);
    }
    startDisplay();
    startBus();
}

Desktop::~Desktop() = default;

void Desktop::startDisplay() {
    display_ = std::make_unique<Program>(
        QStringLiteral("Xvfb"), words("-displayfd 1 -screen 0 1600x1200x24 -nolisten tcp -nolisten unix -noreset"),
        environment_);
    environment_.insert(QStringLiteral("DISPLAY"), u':' + display_->firstLine());
    windowManager_ = std::make_unique<Program>(QStringLiteral("openbox"), QStringList(), environment_);
    eventually("the window manager works", [this] {
        if (!windowManager_->isRunning()) {
            throw std::runtime_error("openbox has ended: " + windowManager_->output().toStdString());
        }
        return outputOf(QStringLiteral("xprop"), words("-root _NET_SUPPORTING_WM_CHECK"), environment_)
            .contains("window id");
    });
}

void Desktop::startBus() {
    const QByteArray configuration = QString::fromUtf8(busConfiguration).arg(folder_.path()).toUtf8();
    bus_ = std::make_unique<Program>(QStringLiteral("dbus-daemon"),
                                     QStringList{QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                                                 QStringLiteral("--config-file"),
                                                 folder_.write(QStringLiteral("bus.conf"), configuration)},
                                     environment_);
    const QString address = bus_->firstLine();
    environment_.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), address);
    screenReader_ = std::make_unique<ScreenReader>(address);
    fileManager_ = std::make_unique<FileManager>(screenReader_->bus());
}

QString Desktop::xdotool(const QStringList& words) const {
    return QString::fromUtf8(outputOf(QStringLiteral("xdotool"), words, environment_)).trimmed();
}

// The mouse

void Desktop::click(const QPoint& place) const {
    xdotool(moveTo(place) + words("click 1"));
}

void Desktop::drag(const QPoint& from, const QPoint& to) const {
    pressMouse(from);
    moveMouse(from, to);
    releaseMouse();
}

void Desktop::pressMouse(const QPoint& place) const {
    xdotool(moveTo(place) + words("mousedown 1"));
}

/// A drag begins after some distance, and what lies below it is asked on the way.
void Desktop::moveMouse(const QPoint& from, const QPoint& to) const {
    constexpr int steps = 10;
    QStringList all;
    for (int step = 1; step <= steps; ++step) {
        all += words("sleep 0.02") + moveTo(from + (to - from) * step / steps);
    }
    xdotool(all + words("sleep 0.1"));
}

void Desktop::releaseMouse() const {
    xdotool(words("mouseup 1"));
}

void Desktop::turnWheelDown(const QPoint& place) const {
    xdotool(moveTo(place) + words("click 5"));
}

// The keyboard

void Desktop::press(const QString& key) const {
    xdotool({QStringLiteral("key"), key});
}

void Desktop::type(const QString& text) const {
    xdotool({QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("2"), text});
}

void Desktop::hold(const QString& key, int milliseconds) const {
    xdotool({QStringLiteral("keydown"), key, QStringLiteral("sleep"), QString::number(milliseconds / 1000.0),
             QStringLiteral("keyup"), key});
}

void Desktop::keyDown(const QString& key) const {
    xdotool({QStringLiteral("keydown"), key});
}

void Desktop::keyUp(const QString& key) const {
    xdotool({QStringLiteral("keyup"), key});
}

// Windows

QString Desktop::windowNamed(const QString& title) const {
    QString window;
    eventually("there is a window " + title.toStdString(), [&] {
        Program search(QStringLiteral("xdotool"),
                       {QStringLiteral("search"), QStringLiteral("--onlyvisible"), QStringLiteral("--name"),
                        u'^' + QRegularExpression::escape(title) + u'$'},
                       environment_);
        static_cast<void>(search.exitStatus());
        window = QString::fromUtf8(search.output()).section(u'\n', 0, 0);
        return !window.isEmpty();
    });
    return window;
}

QString Desktop::activeWindow() const {
    Program asked(QStringLiteral("xdotool"), words("getactivewindow getwindowname"), environment_);
    return asked.exitStatus() == 0 ? QString::fromUtf8(asked.output()).trimmed() : QString();
}

QRect Desktop::placeOf(const QString& title) const {
    const QString lines = xdotool({QStringLiteral("getwindowgeometry"), QStringLiteral("--shell"), windowNamed(title)});
    const auto number = [&](const char* name) {
        const QRegularExpression line(u'^' + QString::fromUtf8(name) + QStringLiteral("=(-?\\d+)$"),
                                      QRegularExpression::MultilineOption);
        return line.match(lines).captured(1).toInt();
    };
    return {number("X"), number("Y"), number("WIDTH"), number("HEIGHT")};
}

void Desktop::activate(const QString& title) const {
    xdotool({QStringLiteral("windowactivate"), windowNamed(title)});
    eventually(title.toStdString() + " is in front", [&] { return activeWindow() == title; });
}

void Desktop::minimizeActiveWindow() const {
    xdotool(words("getactivewindow windowminimize"));
}

/// xdotool of this age can only end a window's connection; the window manager's own key asks it.
void Desktop::close(const QString& title) const {
    activate(title);
    press(QStringLiteral("alt+F4"));
}

} // namespace orvex::test
