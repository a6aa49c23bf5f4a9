#include "HeldReading.h"
#include "InChinese.h"
#include "PrinterFixtures.h"
#include "ProtectedPaths.h"
#include "SessionFixture.h"

#include <unistd.h>

namespace orvex {
namespace {

const QString queue = QStringLiteral("W9400");
const QString other = QStringLiteral("Other");

/// A session on a machine with a printer and settings of the user, which are really read.
class SettingsCheck : public test::SessionTest {
protected:
    SettingsCheck() {
        QDir().mkpath(home(QStringLiteral(".cups")));
        write("Default W9400\n");
        readings.discoverQueues = test::findingQueues({queue, other});
        readings.captureSettings = [this](const QList<QUrl>& paths, const std::stop_token& stop) {
            captured.append(paths);
            return platform::startUtilityTask(
                [paths, stop] { return SettingsPreservationService::capture(paths, stop); });
        };
        start();
    }

    QList<QList<QUrl>> captured;

    [[nodiscard]] QString home(const QString& name) const { return folder.path(QStringLiteral("home/") + name); }

    [[nodiscard]] QString settings() const { return home(QStringLiteral(".cups/lpoptions")); }

    void write(const QByteArray& content) const { folder.write(QStringLiteral("home/.cups/lpoptions"), content); }

    [[nodiscard]] QString baseline() const { return stored(QStringLiteral("settings-preservation-baseline.json")); }

    [[nodiscard]] QByteArray baselineBytes() const { return test::TemporaryFolder::read(baseline()); }

    void refresh() {
        model->refresh();
        settle();
    }

    void expectNoAlert() const { EXPECT_EQ(model->errorMessage(), std::nullopt); }
};

TEST_F(SettingsCheck, HasNotReadAnythingAtFirst) {
    EXPECT_EQ(model->protectionMessage(), QStringLiteral("Reading existing settings fingerprints…"));
    const test::InChinese chinese;
    start();
    EXPECT_EQ(model->protectionMessage(), QStringLiteral("正在读取现有设置指纹…"));
}

TEST_F(SettingsCheck, RecordsNothingBeforeAPrinterIsKnown) {
    readings.discoverQueues = test::findingQueues({});
    start();
    refresh();
    EXPECT_EQ(captured, QList<QList<QUrl>>({protectedPaths(home({}).chopped(1), QString())}));
    EXPECT_FALSE(QFile::exists(baseline()));
    EXPECT_FALSE(SessionBackdoor(*model).hasBaseline());
    EXPECT_EQ(model->protectionMessage(), QStringLiteral("Reading existing settings fingerprints…"));
    expectNoAlert();
}

TEST_F(SettingsCheck, RecordsTheBaselineOfTheFirstPrinter) {
    refresh();
    EXPECT_EQ(captured, QList<QList<QUrl>>({protectedPaths(home({}).chopped(1), queue)}));
    EXPECT_TRUE(QFile::exists(baseline()));
    EXPECT_TRUE(SessionBackdoor(*model).hasBaseline());
    EXPECT_EQ(model->protectionMessage(),
              QStringLiteral("Existing local settings fingerprints were recorded. Driver settings are not written or "
                             "restored."));
    EXPECT_TRUE(model->protectionChanges().isEmpty());
    expectNoAlert();
}

TEST_F(SettingsCheck, RecordsTheBaselineInChinese) {
    const test::InChinese chinese;
    refresh();
    EXPECT_EQ(model->protectionMessage(), QStringLiteral("已记录现有本地设置指纹。不会写入或恢复驱动设置。"));
}

TEST_F(SettingsCheck, FindsNothingWhereNothingHasChanged) {
    refresh();
    const QByteArray bytes = baselineBytes();
    refresh();
    EXPECT_EQ(model->protectionMessage(),
              QStringLiteral("Local settings fingerprints match the baseline. Confirm panel cutting on the printer."));
    const test::InChinese chinese;
    refresh();
    EXPECT_EQ(model->protectionMessage(), QStringLiteral("本地设置指纹与设置基线一致。请在打印机面板上确认裁切设置。"));
    EXPECT_EQ(baselineBytes(), bytes);
}

TEST_F(SettingsCheck, TellsAChangeAtEachPassAndKeepsTheBaseline) {
    refresh();
    const QByteArray bytes = baselineBytes();
    write("Default Other\n");
    for (int pass = 0; pass < 2; ++pass) {
        refresh();
        EXPECT_EQ(
            model->protectionMessage(),
            QStringLiteral("Local settings files have changed. Review the Canon settings; the app will not restore "
                           "or overwrite them automatically."));
        EXPECT_EQ(model->protectionChanges(), QStringList{settings()});
        EXPECT_EQ(baselineBytes(), bytes);
        expectNoAlert();
    }
    {
        const test::InChinese chinese;
        refresh();
        EXPECT_EQ(model->protectionMessage(),
                  QStringLiteral("本地设置文件已发生变化。请核对佳能设置；应用不会自动恢复或覆盖这些文件。"));
    }
    EXPECT_EQ(test::TemporaryFolder::read(settings()), "Default Other\n");
    write("Default W9400\n");
    refresh();
    EXPECT_TRUE(model->protectionChanges().isEmpty());
    EXPECT_EQ(model->protectionMessage(),
              QStringLiteral("Local settings fingerprints match the baseline. Confirm panel cutting on the printer."));
}

TEST_F(SettingsCheck, TellsAllChangesInOrder) {
    refresh();
    QFile::remove(settings());
    const QString preferences = home(QStringLiteral("Library/Preferences/"));
    QDir().mkpath(preferences);
    const QString papers = preferences + QStringLiteral("com.apple.print.custompapers.plist");
    folder.write(QStringLiteral("home/Library/Preferences/com.apple.print.custompapers.plist"), "new");
    refresh();
    EXPECT_EQ(model->protectionChanges(), QStringList({settings(), papers}));
}

TEST_F(SettingsCheck, TellsThatSomeFilesCouldNotBeVerified) {
    QFile::remove(settings());
    ASSERT_EQ(::symlink("elsewhere", settings().toUtf8().constData()), 0);
    refresh();
    refresh();
    EXPECT_EQ(model->protectionMessage(),
              QStringLiteral("Readable local settings are unchanged; some files could not be verified. Confirm panel "
                             "cutting on the printer."));
    EXPECT_TRUE(model->protectionChanges().isEmpty());
    const test::InChinese chinese;
    refresh();
    EXPECT_EQ(model->protectionMessage(),
              QStringLiteral("可读取的本地设置未变化，部分文件无法核实。请在打印机面板上确认裁切设置。"));
}

TEST_F(SettingsCheck, WatchesWhatTheBaselineFixedWhateverThePrinter) {
    refresh();
    captured.clear();
    model->selectPrinter(other);
    test::waitFor([this] { return !captured.isEmpty(); });
    settle();
    QStringList paths;
    for (const QUrl& url : captured.first()) {
        paths.append(url.toLocalFile());
    }
    QStringList expected;
    for (const QUrl& url : protectedPaths(home({}).chopped(1), queue)) {
        expected.append(url.toLocalFile());
    }
    expected.sort();
    EXPECT_EQ(paths, expected);
    EXPECT_TRUE(model->protectionChanges().isEmpty());
}

TEST_F(SettingsCheck, GoesOnWithTheBaselineOfAnEarlierSession) {
    refresh();
    const QByteArray bytes = baselineBytes();
    write("Default Other\n");
    readings.discoverQueues = test::findingQueues({});
    start();
    refresh();
    EXPECT_EQ(model->protectionChanges(), QStringList{settings()});
    EXPECT_EQ(baselineBytes(), bytes);
}

TEST_F(SettingsCheck, OverwritesNoBaselineThatCannotBeRead) {
    refresh();
    folder.write(QStringLiteral("data/ORVEX/settings-preservation-baseline.json"), "{");
    start();
    const QString unreadable =
        QStringLiteral("The settings baseline could not be read; the original file is preserved.");
    EXPECT_EQ(model->protectionMessage(), unreadable);
    refresh();
    EXPECT_EQ(model->protectionMessage(), unreadable);
    EXPECT_EQ(baselineBytes(), "{");
    EXPECT_FALSE(SessionBackdoor(*model).hasBaseline());
    expectNoAlert();
    const test::InChinese chinese;
    start();
    EXPECT_EQ(model->protectionMessage(), QStringLiteral("无法读取设置基线，原文件已保留。"));
}

TEST_F(SettingsCheck, RecordsNothingInASessionThatMayNotWrite) {
    start(SessionAccess::readOnly);
    refresh();
    EXPECT_FALSE(QFile::exists(baseline()));
    EXPECT_FALSE(SessionBackdoor(*model).hasBaseline());
}

TEST_F(SettingsCheck, TellsASessionThatMayNotWriteThatThereIsNoBaseline) {
    start(SessionAccess::readOnly);
    EXPECT_EQ(model->protectionMessage(), QStringLiteral("No settings baseline has been recorded."));
    EXPECT_TRUE(model->diagnosticText().contains(
        QStringLiteral("\nLocal settings check: No settings baseline has been recorded.\n")));
    const test::InChinese chinese;
    start(SessionAccess::readOnly);
    EXPECT_EQ(model->protectionMessage(), QStringLiteral("尚未记录设置基线。"));
}

TEST_F(SettingsCheck, ComparesWithTheBaselineInASessionThatMayNotWrite) {
    refresh();
    start(SessionAccess::readOnly);
    EXPECT_EQ(model->protectionMessage(), QStringLiteral("Reading existing settings fingerprints…"));
    write("Default Other\n");
    refresh();
    EXPECT_EQ(model->protectionChanges(), QStringList{settings()});
}

TEST_F(SettingsCheck, ShowsWhyABaselineCouldNotBeSaved) {
    const auto checks = test::hold(readings.captureSettings);
    start();
    ProtectedSettingsSnapshot invalid;
    invalid.schemaVersion = 2;
    std::string reason;
    try {
        ProtectedSettingsBaseline::validate(invalid);
    } catch (const Failure& failure) {
        reason = failure.message().toStdString();
    }
    model->refresh();
    test::waitFor([&] { return checks->isAwaited(); });
    checks->answer(invalid);
    settle();
    EXPECT_EQ(model->protectionMessage().toStdString(), "Could not save the baseline: " + reason);
    EXPECT_FALSE(SessionBackdoor(*model).hasBaseline());
    EXPECT_FALSE(QFile::exists(baseline()));
    expectNoAlert();
    const test::InChinese chinese;
    model->refresh();
    test::waitFor([&] { return checks->isAwaited(); });
    checks->answer(invalid);
    settle();
    EXPECT_TRUE(model->protectionMessage().startsWith(QStringLiteral("无法保存设置基线：")));
}

} // namespace
} // namespace orvex
