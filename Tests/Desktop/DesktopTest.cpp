#include "DesktopTest.h"

#include "Writers.h"

#include <QDirIterator>

#include <algorithm>

namespace orvex::test {

namespace {

constexpr int smallPixelsPerInch = 100;
constexpr int largeSide = 10'800;

void writePlainPng(const QString& path, int width, int height, const samples::PngForm& form) {
    const std::vector<std::uint8_t> row(static_cast<std::size_t>(width) * (form.hasAlpha ? 4 : 3), 150);
    samples::writePngRows(width, height, form, path.toStdString(), [&](const samples::RowWriter& write) {
        for (int line = 0; line < height; ++line) {
            write(row);
        }
    });
}

} // namespace

// Before the start

QString DesktopTest::picture(const QString& name, double widthInches, double heightInches) const {
    const QString path = desktop.folder().path(name);
    writePlainPng(path, qRound(widthInches * smallPixelsPerInch), qRound(heightInches * smallPixelsPerInch),
                  {.pixelsPerInch = smallPixelsPerInch, .profile = {}});
    return path;
}

QStringList DesktopTest::largePictures(int times) const {
    const QString path = desktop.folder().path(q("large.png"));
    writePlainPng(path, largeSide, largeSide, {.hasAlpha = true, .pixelsPerInch = 300, .profile = {}});
    return QStringList(times, path);
}

RollArtwork DesktopTest::artwork(const QString& name, double x, double y) const {
    return RollArtwork::make({.id = QUuid::createUuid(),
                              .sourceURL = QUrl::fromLocalFile(picture(name, 10, 5)),
                              .pixelWidth = 1000,
                              .pixelHeight = 500,
                              .originalWidthInches = 10.0,
                              .originalHeightInches = 5.0,
                              .widthInches = 10.0,
                              .xInches = x,
                              .yInches = y});
}

void DesktopTest::leave(const QList<RollArtwork>& artworks) const {
    RollWorkspaceFile left;
    left.layout.items = artworks;
    left.selection = artworks.first().id;
    QDir().mkpath(workspace());
    static_cast<void>(desktop.folder().write(q("workspace/roll-layout.json"), left.encode()));
}

void DesktopTest::leaveLayoutWithOneArtwork() const {
    leave({artwork(q("art.png"), 20, 10)});
}

void DesktopTest::leaveLayoutWithTwoArtworks() const {
    leave({artwork(q("art.png"), 20, 10), artwork(q("below.png"), 20, 30)});
}

// The program

void DesktopTest::start(const QStringList& arguments) {
    launch(arguments);
    eventually("the window is in front", [this] { return desktop.activeWindow() == q("orvex"); });
}

void DesktopTest::launch(const QStringList& arguments, const QString& firstTab) {
    desktop.screenReader().detach();
    orvex = run(inWorkspace(arguments));
    eventually("the program shows itself", [this] {
        if (!orvex->isRunning()) {
            throw std::runtime_error("the program has ended: " + orvex->output().toStdString());
        }
        return desktop.screenReader().isAttached();
    });
    static_cast<void>(waitFor(Role::tab, firstTab));
}

std::unique_ptr<Program> DesktopTest::run(const QStringList& arguments, const QString& program) const {
    return std::make_unique<Program>(program, arguments, desktop.environment());
}

QStringList DesktopTest::inWorkspace(const QStringList& more) const {
    return QStringList{q("--orvex-qa-workspace"), workspace()} + more;
}

std::unique_ptr<Program> DesktopTest::dragSource(const QStringList& files) const {
    QProcessEnvironment environment = desktop.environment();
    environment.remove(q("DBUS_SESSION_BUS_ADDRESS")); // the screen reader stays with the program under test
    return std::make_unique<Program>(q(ORVEX_DRAG_SOURCE), files, environment);
}

QString DesktopTest::dragOntoBoard(Program& source) {
    const QPoint board = waitForPart(Role::canvas, q("60-inch roll canvas")).place.center();
    desktop.drag(desktop.placeOf(q("drag source")).center(), board);
    return source.firstLine();
}

qint64 DesktopTest::millisecondsToEnd() {
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(orvex->exitStatus(), 0) << orvex->output().constData();
    return timer.elapsed();
}

// What it shows

ScreenReader::Element DesktopTest::waitFor(Role role, const QString& name) {
    std::optional<ScreenReader::Element> found;
    eventually("it shows " + name.toStdString(), [&] {
        found = desktop.screenReader().find(role, name);
        return found.has_value();
    });
    return *found;
}

ScreenReader::Element DesktopTest::waitForPart(Role role, const QString& part) {
    std::optional<ScreenReader::Element> found;
    eventually("it shows " + part.toStdString(), [&] {
        found = desktop.screenReader().findContaining(role, part);
        return found.has_value();
    });
    return *found;
}

bool DesktopTest::shows(Role role, const QString& name) {
    return desktop.screenReader().find(role, name).has_value();
}

QString DesktopTest::alertText() {
    const ScreenReader::Element message = waitFor(Role::field, q("Message"));
    return desktop.screenReader().textOf(message);
}

// What is done to it

void DesktopTest::click(Role role, const QString& name) {
    std::optional<ScreenReader::Element> control;
    eventually(name.toStdString() + " can be clicked on", [&] {
        control = desktop.screenReader().find(role, name);
        return control && control->isEnabled;
    });
    desktop.click(control->place.center());
}

void DesktopTest::scrollTo(Role role, const QString& name) {
    constexpr int statusLineHeight = 40;
    const QRect window = desktop.placeOf(q("orvex")).adjusted(0, 0, 0, -statusLineHeight);
    eventually(name.toStdString() + " comes into view", [&] {
        const QPoint place = waitFor(role, name).place.center();
        if (place.y() > window.bottom()) {
            desktop.turnWheelDown(QPoint(place.x(), window.center().y()));
            return false;
        }
        return true;
    });
}

void DesktopTest::choose(const QString& menu, const QString& command) {
    click(Role::menuItem, menu);
    click(Role::menuItem, command);
}

void DesktopTest::fill(const QString& field, const QString& text) {
    click(Role::field, field);
    desktop.press(q("ctrl+a"));
    desktop.type(text);
    eventually(field.toStdString() + " holds what was typed",
               [&] { return desktop.screenReader().textOf(waitFor(Role::field, field)) == text; });
}

void DesktopTest::chooseFile(const QString& path) {
    fill(q("File name:"), path);
    desktop.press(q("Return"));
    eventually("the file dialog is gone", [this] { return !shows(Role::field, q("File name:")); });
}

// What it leaves

std::optional<RollWorkspaceFile> DesktopTest::savedFile() const {
    const QString path = workspace() + q("/roll-layout.json");
    return QFile::exists(path) ? std::optional(RollWorkspaceFile::decode(TemporaryFolder::read(path))) : std::nullopt;
}

RollLayout DesktopTest::saved() const {
    const auto file = savedFile();
    return file ? file->layout : RollLayout();
}

RollArtwork DesktopTest::savedArtwork(const QString& title) const {
    const RollLayout layout = saved();
    const auto found = std::ranges::find(layout.items, title, &RollArtwork::title);
    if (found == layout.items.end()) {
        throw std::runtime_error("no saved artwork " + title.toStdString());
    }
    return *found;
}

RollLayout DesktopTest::savedAfter(const RollLayout& before) const {
    RollLayout now;
    eventually("another layout is saved", [&] {
        now = saved();
        return now != before;
    });
    return now;
}

QStringList DesktopTest::leftovers() const {
    QStringList found;
    QDirIterator temporary(desktop.environment().value(q("TMPDIR")),
                           QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (temporary.hasNext()) {
        found.append(temporary.next());
    }
    QDirIterator own(desktop.folder().path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (own.hasNext()) {
        const QString path = own.next();
        if (path.startsWith(workspace()) && own.fileName().startsWith(u'.')) {
            found.append(path);
        }
    }
    return found;
}

} // namespace orvex::test
