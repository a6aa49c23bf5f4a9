#include "CanvasPreference.h"
#include "Command.h"
#include "Files/FolderLock.h"
#include "IccFixtures.h"
#include "Json/JsonWriter.h"
#include "Stores/LocalQueue.h"
#include "Stores/PresetStore.h"
#include "Stores/PrintJournal.h"
#include "TemporaryFolder.h"

#include <QJsonArray>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <array>

namespace orvex {
namespace {

using test::CommandResult;
using test::q;
using test::runCommand;

const QUuid firstID(q("11111111-AAAA-4111-8111-111111111111"));
const QUuid secondID(q("22222222-BBBB-4222-8222-222222222222"));

class StoreCommands : public ::testing::Test {
protected:
    QUrl workspace() const { return QUrl::fromLocalFile(folder_.path()); }

    CommandResult run(const QStringList& arguments, const QString& language = q("en")) const {
        return runCommand(QStringList{q("--orvex-qa-workspace"), folder_.path()} + arguments, {}, language);
    }

    static void expectRefused(const CommandResult& result, const QString& message) {
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.output, QByteArray());
        EXPECT_EQ(result.errors, message + u'\n');
    }

    static void expectWrongUsage(const CommandResult& result) {
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.output, QByteArray());
        EXPECT_TRUE(result.errors.contains(q("\nusage: orvexctl"))) << result.errors.toStdString();
    }

    test::TemporaryFolder folder_;
};

// Jobs

class JobsCommand : public StoreCommands {
protected:
    JobsCommand() {
        LocalQueueStore(workspace()).save({job(firstID), job(secondID)});
        folder_.write(firstName_, "first PDF");
        folder_.write(secondName_, "second PDF");
    }

    static StagedJob job(const QUuid& id) {
        return {
            .id = id, .title = q("画 / 1"), .printerName = q("Studio"), .createdAt = {8e8}, .sourceProfile = q("P")};
    }

    QByteArray list() const { return test::TemporaryFolder::read(folder_.path(q("queue.json"))); }

    const QString firstName_ = q("11111111-AAAA-4111-8111-111111111111.pdf");
    const QString secondName_ = q("22222222-BBBB-4222-8222-222222222222.pdf");
};

TEST_F(JobsCommand, ListsTheJobs) {
    const QByteArray expected = R"([
    {
        "createdAt": 800000000,
        "id": "11111111-AAAA-4111-8111-111111111111",
        "printerName": "Studio",
        "settings": {
            "driverPageSize": "",
            "heightMM": 297,
            "marginMM": 10,
            "mediaNote": "",
            "paperSource": "卷纸",
            "placement": "完整放入",
            "widthMM": 210
        },
        "sourceProfile": "P",
        "title": "画 / 1"
    },
)";
    const CommandResult result = run({q("jobs"), q("list")});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, QString());
    EXPECT_TRUE(result.output.startsWith(expected)) << result.output.toStdString();
    EXPECT_EQ(result.json().array().size(), 2);
    EXPECT_EQ(run({q("jobs")}).output, result.output);
}

TEST_F(JobsCommand, ExportsAPdf) {
    const QString copy = folder_.path(q("copy.pdf"));
    const CommandResult result = run({q("jobs"), q("export"), q("22222222-bbbb-4222-8222-222222222222"), copy});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.json().object().value(u"id").toString(), q("22222222-BBBB-4222-8222-222222222222"));
    EXPECT_EQ(test::TemporaryFolder::read(copy), "second PDF");
    EXPECT_EQ(test::TemporaryFolder::read(folder_.path(secondName_)), "second PDF");
}

TEST_F(JobsCommand, ExportsAPdfToStandardOutput) {
    const CommandResult result = run({q("jobs"), q("export"), firstID.toString(QUuid::WithoutBraces), q("-")});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "first PDF");
}

TEST_F(JobsCommand, KeepsTheDestinationIfThePdfIsGone) {
    const QString copy = folder_.write(q("copy.pdf"), "old");
    QFile::remove(folder_.path(firstName_));
    expectRefused(run({q("jobs"), q("export"), firstID.toString(QUuid::WithoutBraces), copy}),
                  folder_.path(firstName_) + q(": No such file or directory"));
    EXPECT_EQ(test::TemporaryFolder::read(copy), "old");
}

TEST_F(JobsCommand, ExportsNoPdfOverTheProgramsOwnData) {
    const QByteArray before = list();
    const QString id = firstID.toString(QUuid::WithoutBraces);
    ASSERT_TRUE(QFile::link(folder_.path(q("queue.json")), folder_.path(q("link.pdf"))));
    ASSERT_TRUE(QDir().mkpath(folder_.path(q("presets/profiles"))));
    for (const QString& name : {q("queue.json"), secondName_, firstName_, q("link.pdf"), q("new.json"),
                                q("presets/profiles/a.icc"), q("33333333-CCCC-4333-8333-333333333333.pdf")}) {
        expectRefused(run({q("jobs"), q("export"), id, folder_.path(name)}),
                      q("A PDF cannot be exported over the program's own data. Choose another file."));
    }
    EXPECT_EQ(run({q("jobs"), q("export"), id, folder_.path(q("queue.json"))}, q("zh-Hans")).errors,
              q("不能将 PDF 导出到应用自身的数据文件。请另选一个文件。\n"));
    EXPECT_EQ(list(), before);
    EXPECT_EQ(test::TemporaryFolder::read(folder_.path(secondName_)), "second PDF");
}

TEST_F(JobsCommand, ExportsToNoFileThatItsNameDoesNotLeadTo) {
    QProcess process;
    process.start(q("/bin/sh"), {q("-c"),
                                 q("exec \"$0\" --language en --orvex-qa-workspace \"$1\" jobs export \"$2\" "
                                   "\"$1/$(printf 'a\\377.pdf')\""),
                                 q(ORVEXCTL), folder_.path(), firstID.toString(QUuid::WithoutBraces)});
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 1);
    EXPECT_EQ(QString::fromUtf8(process.readAllStandardError()),
              q("The path \"") + folder_.path() + q("/a\uFFFD.pdf\" is not valid UTF-8 text.\n"));
    EXPECT_EQ(folder_.names(), (QStringList{firstName_, secondName_, q("queue.json")}));
}

TEST_F(JobsCommand, RemovesEveryRecordOfAJob) {
    LocalQueueStore(workspace()).save({job(firstID), job(secondID), job(firstID)});
    EXPECT_EQ(run({q("jobs"), q("remove"), firstID.toString(QUuid::WithoutBraces)}).status, 0);
    EXPECT_EQ(LocalQueueStore(workspace()).load(), QList{job(secondID)});
}

TEST_F(JobsCommand, RemovesAJobAndItsPdf) {
    const CommandResult result = run({q("jobs"), q("remove"), firstID.toString(QUuid::WithoutBraces)});
    EXPECT_EQ(result.status, 0);
    ASSERT_EQ(result.json().array().size(), 1);
    EXPECT_EQ(LocalQueueStore(workspace()).load(), QList{job(secondID)});
    EXPECT_EQ(folder_.names(), (QStringList{secondName_, q("queue.json")}));
}

TEST_F(JobsCommand, SaysIfThePdfCouldNotBeDeleted) {
    QFile::remove(folder_.path(firstName_));
    QDir().mkpath(folder_.path(firstName_)); // a folder, which is deleted by nobody as a file
    expectRefused(run({q("jobs"), q("remove"), firstID.toString(QUuid::WithoutBraces)}),
                  q("The job record was removed, but its PDF could not be deleted. Check permissions for the app data "
                    "folder."));
    EXPECT_EQ(LocalQueueStore(workspace()).load(), QList{job(secondID)});
}

TEST_F(JobsCommand, RefusesAJobThatIsNotThere) {
    const QByteArray before = list();
    for (const char* command : {"export", "remove"}) {
        QStringList arguments{q("jobs"), q(command), q("33333333-CCCC-4333-8333-333333333333")};
        if (q(command) == u"export") {
            arguments.append(folder_.path(q("copy.pdf")));
        }
        expectRefused(run(arguments), q("The local print queue has no job with this ID."));
        EXPECT_EQ(run(arguments, q("zh-Hans")).errors, q("本地待打印队列中没有此 ID 的作业。\n"));
    }
    EXPECT_EQ(list(), before);
    EXPECT_EQ(folder_.names(), (QStringList{firstName_, secondName_, q("queue.json")}));
}

TEST_F(JobsCommand, RefusesADamagedListAndKeepsIt) {
    const QByteArray damaged = list().replace("\"printerName\"", "\"printer\"");
    folder_.write(q("queue.json"), damaged);
    const QString message = q("[0].printerName: The required key is missing.");
    expectRefused(run({q("jobs")}), message);
    expectRefused(run({q("jobs"), q("remove"), firstID.toString(QUuid::WithoutBraces)}), message);
    EXPECT_EQ(list(), damaged);
    EXPECT_EQ(folder_.names(), (QStringList{firstName_, secondName_, q("queue.json")}));
}

TEST_F(JobsCommand, TakesAnIdForNothingElse) {
    expectWrongUsage(run({q("jobs"), q("remove"), q("first")}));
    expectWrongUsage(run({q("jobs"), q("remove"), q("{11111111-AAAA-4111-8111-111111111111}")}));
    expectWrongUsage(run({q("jobs"), q("remove")}));
    expectWrongUsage(run({q("jobs"), q("forget")}));
    expectWrongUsage(run({q("jobs"), q("list"), q("more")}));
    EXPECT_EQ(LocalQueueStore(workspace()).load().size(), 2);
}

// Presets

class PresetsCommand : public StoreCommands {
protected:
    PresetStore store() const { return PresetStore(PresetStore::folderIn(workspace())); }

    static PrintPreset preset(const QUuid& id) {
        return {.id = id, .name = q("Canvas"), .createdAt = {1}, .updatedAt = {1}, .settings = {}, .mediaName = q("M")};
    }
};

TEST_F(PresetsCommand, ListsAndDeletes) {
    (void)store().save(preset(firstID));
    const PrintPreset second = store().save(preset(secondID));
    EXPECT_EQ(run({q("presets"), q("list")}).json().array().size(), 2);
    EXPECT_EQ(run({q("presets")}).output, run({q("presets"), q("list")}).output);
    const CommandResult result = run({q("presets"), q("delete"), firstID.toString(QUuid::WithoutBraces)});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.json().array(), QJsonArray{second.toJson()});
    EXPECT_EQ(store().load(), QList{second});
}

TEST_F(PresetsCommand, DeletesTheBindingOfAPresetWithIt) {
    (void)store().save(preset(firstID));
    (void)store().save(preset(secondID));
    const QUrl file = CanvasPreference::url(workspace());
    const CanvasPreference binding{.printerName = q("W9400"), .presetID = firstID};
    binding.save(file);
    EXPECT_EQ(run({q("presets"), q("delete"), secondID.toString(QUuid::WithoutBraces)}).status, 0);
    EXPECT_EQ(CanvasPreference::load(file), binding);
    EXPECT_EQ(run({q("presets"), q("delete"), firstID.toString(QUuid::WithoutBraces)}).status, 0);
    EXPECT_EQ(folder_.names(), QStringList{q("presets")});
}

TEST_F(PresetsCommand, DeletesNothingWithABindingThatCannotBeRead) {
    const PrintPreset stored = store().save(preset(firstID));
    folder_.write(q("canvas-default.json"), "{}");
    expectRefused(run({q("presets"), q("delete"), firstID.toString(QUuid::WithoutBraces)}),
                  q("printerName: The required key is missing."));
    EXPECT_EQ(store().load(), QList{stored});
    EXPECT_EQ(test::TemporaryFolder::read(folder_.path(q("canvas-default.json"))), "{}");
}

TEST_F(PresetsCommand, KeepsTheBindingOfAPresetThatCannotBeDeleted) {
    (void)store().save(preset(firstID));
    const QUrl file = CanvasPreference::url(workspace());
    const CanvasPreference binding{.printerName = q("W9400"), .presetID = firstID};
    binding.save(file);
    folder_.write(q("presets/bad.json"), "{}");
    EXPECT_EQ(run({q("presets"), q("delete"), firstID.toString(QUuid::WithoutBraces)}).status, 1);
    EXPECT_EQ(CanvasPreference::load(file), binding);
}

TEST_F(PresetsCommand, HasNothingAgainstAPresetThatIsGone) {
    const CommandResult result = run({q("presets"), q("delete"), firstID.toString(QUuid::WithoutBraces)});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "[\n]\n");
}

TEST_F(PresetsCommand, ImportsAProfile) {
    const QByteArray profile = test::icc::saved(test::icc::rgb(2.2, cmsSigOutputClass));
    const QString file = folder_.write(q("Canvas 画布.icc"), profile);
    const CommandResult result = run({q("presets"), q("import-icc"), file});
    EXPECT_EQ(result.status, 0);
    const ManagedICCAsset asset = ManagedICCAsset::fromJson(platform::JsonReader::parse(result.output));
    EXPECT_EQ(asset.displayName, q("Canvas 画布.icc"));
    EXPECT_EQ(test::TemporaryFolder::read(folder_.path(q("presets/profiles/") + asset.filename)), profile);
}

TEST_F(PresetsCommand, ImportsAProfileFromStandardInput) {
    const QByteArray profile = test::icc::saved(test::icc::rgb(2.2, cmsSigOutputClass));
    const CommandResult result =
        runCommand({q("--orvex-qa-workspace"), folder_.path(), q("presets"), q("import-icc"), q("-")}, profile);
    EXPECT_EQ(result.status, 0) << result.errors.toStdString();
    const ManagedICCAsset asset = ManagedICCAsset::fromJson(platform::JsonReader::parse(result.output));
    EXPECT_EQ(asset.displayName, q("-"));
    EXPECT_EQ(store().listICCAssets().size(), 1);
}

TEST_F(PresetsCommand, RefusesWhatIsNoProfile) {
    const QString file = folder_.write(q("a.icc"), QByteArray(200, 'x'));
    expectRefused(run({q("presets"), q("import-icc"), file}), q("Cannot parse the ICC profile."));
    expectRefused(run({q("presets"), q("import-icc"), folder_.path()}),
                  q("The file is missing, is not a regular file, or is a link: ") +
                      QFileInfo(folder_.path()).fileName() + u'.');
    EXPECT_EQ(QDir(folder_.path(q("presets/profiles"))).entryList(QDir::Files), QStringList());
}

TEST_F(PresetsCommand, NamesAPresetThatCannotBeRead) {
    (void)store(); // makes the folders
    folder_.write(q("presets/bad.json"), "{}");
    const QString message = q("Cannot read preset bad.json: schemaVersion: The required key is missing. The original "
                              "file was kept. Repair or move it before continuing.");
    expectRefused(run({q("presets")}), message);
    expectRefused(run({q("presets"), q("delete"), firstID.toString(QUuid::WithoutBraces)}), message);
    EXPECT_EQ(
        run({q("presets")}, q("zh-Hans")).errors,
        q("无法读取预设 bad.json。原文件已保留，请修复或移走该文件后再继续。原因：schemaVersion：缺少必需的键。\n"));
    EXPECT_EQ(test::TemporaryFolder::read(folder_.path(q("presets/bad.json"))), "{}");
}

// Journal

TEST_F(StoreCommands, ListTheJournal) {
    EXPECT_EQ(run({q("journal")}).output, "[\n]\n");
    const PrintObservation observation{.id = firstID, .createdAt = {8e8}, .note = q("a/b"), .iccSHA256 = q("c")};
    (void)PrintJournalStore(workspace()).append(observation);
    const CommandResult result = run({q("journal"), q("list")});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.json().array(), QJsonArray{observation.toJson()});
    EXPECT_EQ(run({q("journal")}).output, result.output);
}

TEST_F(StoreCommands, RefuseADamagedJournalAndKeepIt) {
    folder_.write(q("print-observations.json"), "[{}]");
    expectRefused(run({q("journal")}), q("[0].id: The required key is missing."));
    EXPECT_EQ(test::TemporaryFolder::read(folder_.path(q("print-observations.json"))), "[{}]");
}

// What the window has open

class StoresInUse : public JobsCommand {
protected:
    StoresInUse() {
        (void)presets().save({.id = firstID, .name = q("Canvas"), .createdAt = {1}, .updatedAt = {1}});
        profile_ = folder_.write(q("canvas.icc"), test::icc::saved(test::icc::rgb(2.2, cmsSigOutputClass)));
    }

    PresetStore presets() const { return PresetStore(PresetStore::folderIn(workspace())); }

    QList<QStringList> changes() const {
        const QString id = firstID.toString(QUuid::WithoutBraces);
        return {{q("jobs"), q("remove"), id},
                {q("presets"), q("delete"), id},
                {q("presets"), q("import-icc"), profile_},
                {q("fingerprint"), q("--baseline"), folder_.path(q("settings-preservation-baseline.json")), q("--save"),
                 QStringLiteral("/etc/hostname")}};
    }

    QString profile_;
};

TEST_F(StoresInUse, AreNotChanged) {
    const auto window = platform::FolderLock::tryLock(folder_.path());
    ASSERT_TRUE(window);
    const QStringList before = folder_.names();
    for (const QStringList& change : changes()) {
        expectRefused(run(change), q("orvex is open with this data folder, so nothing was changed. Quit orvex and try "
                                     "again."));
    }
    EXPECT_EQ(run(changes().first(), q("zh-Hans")).errors,
              q("orvex 正在使用此数据文件夹，未作任何更改。请先退出 orvex，然后重试。\n"));
    EXPECT_EQ(folder_.names(), before);
    EXPECT_EQ(LocalQueueStore(workspace()).load(), (QList{job(firstID), job(secondID)}));
    EXPECT_EQ(presets().load().size(), 1);
    EXPECT_EQ(presets().listICCAssets(), QList<ManagedICCAsset>());
}

TEST_F(StoresInUse, AreRead) {
    const auto window = platform::FolderLock::tryLock(folder_.path());
    EXPECT_EQ(run({q("jobs")}).json().array().size(), 2);
    EXPECT_EQ(run({q("presets")}).json().array().size(), 1);
    EXPECT_EQ(run({q("journal")}).output, "[\n]\n");
    const QString copy = folder_.path(q("copy.pdf"));
    EXPECT_EQ(run({q("jobs"), q("export"), firstID.toString(QUuid::WithoutBraces), copy}).status, 0);
    EXPECT_EQ(test::TemporaryFolder::read(copy), "first PDF");
}

TEST_F(StoresInUse, AreChangedAsSoonAsTheyAreFree) {
    for (const QStringList& change : changes()) {
        EXPECT_EQ(run(change).status, 0);
    }
    EXPECT_EQ(LocalQueueStore(workspace()).load(), QList{job(secondID)});
    EXPECT_EQ(presets().load().size(), 0);
    EXPECT_EQ(presets().listICCAssets().size(), 1);
    EXPECT_TRUE(platform::FolderLock::tryLock(folder_.path()));
}

TEST_F(StoresInUse, AreThoseOfTheirOwnFolderOnly) {
    const test::TemporaryFolder other;
    const auto window = platform::FolderLock::tryLock(other.path());
    ASSERT_TRUE(window);
    EXPECT_EQ(run(changes().first()).status, 0);
}

TEST_F(StoresInUse, LoseNothingToCommandsThatRunAtOnce) {
    constexpr int count = 4;
    QList<StagedJob> jobs;
    std::array<QProcess, count> commands;
    for (int index = 0; index < count; ++index) {
        jobs.append(job(QUuid::createUuid()));
    }
    LocalQueueStore(workspace()).save(jobs + QList{job(secondID)});
    for (int index = 0; index < count; ++index) {
        const QString id = jobs[index].id.toString(QUuid::WithoutBraces);
        folder_.write(jobs[index].pdfFileName(), "PDF");
        commands[static_cast<std::size_t>(index)].start(
            q(ORVEXCTL), {q("--orvex-qa-workspace"), folder_.path(), q("jobs"), q("remove"), id});
    }
    for (QProcess& command : commands) {
        ASSERT_TRUE(command.waitForFinished());
        EXPECT_EQ(command.exitCode(), 0) << command.readAllStandardError().toStdString();
    }
    EXPECT_EQ(LocalQueueStore(workspace()).load(), QList{job(secondID)});
}

// The place of the stores

TEST_F(StoreCommands, UseTheApplicationFolder) {
    const QByteArray before = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", folder_.path().toUtf8());
    const CommandResult jobs = runCommand({q("jobs")});
    const CommandResult presets = runCommand({q("presets")});
    before.isNull() ? qunsetenv("XDG_DATA_HOME") : qputenv("XDG_DATA_HOME", before);
    EXPECT_EQ(jobs.output, "[\n]\n");
    EXPECT_EQ(presets.output, "[\n]\n");
    EXPECT_EQ(folder_.names(), QStringList{q("ORVEX")});
    EXPECT_TRUE(QFileInfo(folder_.path(q("ORVEX/presets/profiles"))).isDir());
}

TEST_F(StoreCommands, NeverTakeTheOperatorsFolderForAWorkspaceThatIsNotUnderstood) {
    expectWrongUsage(runCommand({q("--orvex-qa-workspace"), q("relative"), q("jobs")}));
    expectWrongUsage(runCommand({q("--orvex-qa-workspace=") + folder_.path(), q("jobs")}));
    expectWrongUsage(runCommand({q("jobs"), q("--orvex-qa-workspace"), folder_.path()}));
}

TEST_F(StoreCommands, SayWhatIsWrongWithTheFolder) {
    const QString file = folder_.write(q("file"), "kept");
    expectRefused(runCommand({q("--orvex-qa-workspace"), file, q("jobs")}), file + q(": Not a directory"));
    EXPECT_EQ(test::TemporaryFolder::read(file), "kept");
}

} // namespace
} // namespace orvex
