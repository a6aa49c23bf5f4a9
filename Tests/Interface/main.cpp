#include "RunTests.h"
#include "Theme/OrvexTheme.h"

#include <QApplication>
#include <QTemporaryDir>

namespace {

/// Nothing of the user's is read or written, before a test has a folder of its own as well.
void leaveHome(const QTemporaryDir& folder) {
    for (const char* name : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"}) {
        qputenv(name, folder.path().toUtf8());
    }
}

} // namespace

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QTemporaryDir home;
    leaveHome(home);
    QApplication application(argc, argv);
    orvex::OrvexTheme::apply(application);
    return orvex::test::runTestsInEnglish();
}
