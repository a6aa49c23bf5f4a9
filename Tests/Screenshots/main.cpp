// Draws the window in all its states into PNG files, for the eyes of whoever changes it.
// usage: make-screenshots FOLDER LANGUAGE     (the scale is QT_SCALE_FACTOR's)

#include "NoDesktop.h"
#include "OrvexLanguage.h"
#include "PrinterFixtures.h"
#include "Scenes.h"
#include "SessionFixture.h"
#include "Shell/DesktopServices.h"
#include "Shell/MainWindow.h"
#include "Theme/OrvexTheme.h"

#include <QApplication>
#include <QDir>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabBar>
#include <QTest>

#include <cstdio>

namespace orvex::test {

namespace {

/// The desktop of the picture: nobody answers its dialogs, and its clock stands still.
class StillDesktop : public DesktopServices {
public:
    [[nodiscard]] platform::Timestamp now() const override { return {800'000'000.0}; }
};

PrinterTelemetrySnapshot stateOf(const QString& queue) {
    PrinterTelemetrySnapshot state = readyState(queue);
    state.queuedJobCount = 1;
    state.markers = {{.index = 0, .name = QStringLiteral("Matte Black"), .level = 74},
                     {.index = 1, .name = QStringLiteral("Cyan"), .level = 41},
                     {.index = 2, .name = QStringLiteral("Magenta"), .level = -3},
                     {.index = 3, .level = 12}};
    return state;
}

MachineReadings stationReadings() {
    MachineReadings readings = quietReadings();
    readings.discoverQueues = findingQueues({QStringLiteral("Canon_iPF9400"), QStringLiteral("Proof_A3")});
    readings.readTelemetry = [](const QString& queue, const std::stop_token&) {
        return QtFuture::makeReadyFuture(stateOf(queue));
    };
    return readings;
}

QList<QUrl> makePictures(const QString& folder) {
    struct Artwork {
        const char* name;
        samples::Scene (*scene)(int, int);
        int width;
        int height;
    };

    QList<QUrl> files;
    for (const Artwork& each :
         {Artwork{"Mountain Dawn.png", samples::mountainDawn, 600, 400},
          Artwork{"Marbled Tide.png", samples::marbledTide, 600, 450},
          Artwork{"Still Life.png", samples::stillLife, 500, 400}, Artwork{"白桦林.png", samples::birches, 400, 600},
          Artwork{"Harbour Lights.png", samples::harbourLights, 640, 360}}) {
        const QString path = folder + u'/' + QString::fromUtf8(each.name);
        samples::writePng(samples::pictureOf(each.width, each.height, each.scene(each.width, each.height)),
                          {.pixelsPerInch = 25, .profile = {}}, path.toStdString());
        files.append(QUrl::fromLocalFile(path));
    }
    return files;
}

/// A session with its window, photographed in one state after the other.
class Photographer {
public:
    explicit Photographer(QString folder)
        : folder_(std::move(folder)),
          session_(services_, SessionAccess::full, stationReadings()),
          window_(session_, services_) {
        QDir().mkpath(folder_);
        window_.show();
        session_.startRefreshing();
        settle();
    }

    void takeEmpty() { take("empty"); }

    void takeRoll(const QList<QUrl>& pictures) {
        session_.importFiles(pictures);
        settle();
        session_.arrangeRoll(true);
        takeTabs();
        takeBatchPanel();
        takeAlert();
        takeSmall();
    }

    void takeWarnings() { take("warnings"); }

private:
    void settle() {
        waitFor([this] { return !session_.busy() && !session_.refreshing(); });
        QTest::qWait(400); // for the pictures
    }

    void take(const char* name) { takeOf(window_, name); }

    void takeOf(QWidget& widget, const char* name) {
        settle();
        const QString file = QStringLiteral("%1/%2-%3-%4x.png")
                                 .arg(folder_, QString::fromLatin1(name), OrvexLanguage::current().rawValue(),
                                      QString::number(window_.devicePixelRatio()));
        if (!widget.grab().save(file)) {
            std::fprintf(stderr, "%s cannot be written\n", qUtf8Printable(file));
            std::exit(1);
        }
    }

    void takeTabs() {
        take("roll");
        session_.stageRollPDF();
        settle();
        take("queue");
        session_.setTab(2);
        take("diagnostics");
        session_.setObservationForm({.observationNote = spt("第三张左侧偏紫", "Left side purple on the third print")});
        session_.recordObservation();
        session_.setTab(3);
        take("device");
        session_.setTab(0);
    }

    void takeBatchPanel() {
        session_.presentBatchSizing();
        settle();
        QWidget* panel = QApplication::activeModalWidget();
        takeOf(*panel, "batch");
        QTest::mouseClick(panel->findChild<QPushButton*>(QStringLiteral("batchCalculateButton")), Qt::LeftButton);
        QTest::qWait(2000);
        takeOf(*panel, "batch-preview");
        panel->close();
    }

    void takeAlert() {
        session_.openCanonMonitor();
        settle();
        QWidget* alert = QApplication::activeModalWidget();
        takeOf(*alert, "alert");
        alert->close();
    }

    void takeSmall() {
        window_.resize(window_.minimumSizeHint());
        take("small");
        auto* column = window_.findChild<QScrollArea*>(QStringLiteral("sideColumn"));
        QScrollBar& bar = *column->verticalScrollBar();
        for (const int part : {1, 2, 3}) {
            bar.setValue(bar.maximum() * part / 3);
            take(qPrintable(QStringLiteral("small-%1").arg(part)));
        }
    }

    const QString folder_;
    StillDesktop services_;
    OrvexModel session_;
    MainWindow window_;
};

} // namespace

} // namespace orvex::test

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: make-screenshots FOLDER LANGUAGE\n", stderr);
        return 2;
    }
    const QString folder = QFileInfo(QFile::decodeName(argv[1])).absoluteFilePath();
    const orvex::test::TemporaryFolder place;
    for (const char* name : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"}) {
        qputenv(name, place.path().toUtf8());
    }
    QApplication application(argc, argv);
    orvex::OrvexTheme::apply(application);
    orvex::OrvexLanguage::setConfigured(QString::fromLatin1(argv[2]));
    const QList<QUrl> pictures = orvex::test::makePictures(place.path());
    {
        orvex::test::Photographer photographer(folder);
        photographer.takeEmpty();
        photographer.takeRoll(pictures);
    }
    QFile::remove(pictures.first().toLocalFile());
    QFile::remove(pictures.last().toLocalFile());
    orvex::test::Photographer(folder).takeWarnings();
}
