#include "Stores/PresetStore.h"

#include "Files/FileSystemError.h"
#include "IccFixtures.h"
#include "InChinese.h"
#include "OrvexError.h"
#include "PresetFixtures.h"
#include "Sha256.h"
#include "StoreFixtures.h"

#include <QFileInfo>
#include <QLocale>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <limits>

namespace orvex {

namespace icc = test::icc;

namespace {

using test::failureOf;
using test::TemporaryFolder;

constexpr auto badProfile = "Cannot parse the ICC profile.";
constexpr auto badName = "The preset ID does not match its filename or is duplicated.";

QByteArray profileData(double gamma = 1.8) {
    return icc::saved(icc::rgb(gamma));
}

QString filenameOf(const QUuid& id) {
    return id.toString(QUuid::WithoutBraces) + QStringLiteral(".json");
}

PrintPreset numbered(unsigned number, const QString& name, double updatedAt) {
    PrintPreset preset = test::preset();
    preset.id = QUuid(number, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    preset.name = name;
    preset.updatedAt = {updatedAt};
    return preset;
}

/// The message about a preset; the system's reasons have no full stop of their own.
std::string unreadable(const QString& filename, const std::string& reason) {
    return "Cannot read preset " + filename.toStdString() + ": " + reason + (reason.ends_with('.') ? "" : ".") +
           " The original file was kept. Repair or move it before continuing.";
}

std::string noRegularFile(const QString& name) {
    return "The file is missing, is not a regular file, or is a link: " + name.toStdString() + ".";
}

std::string noSuchFile(const QString& path) {
    return path.toStdString() + ": No such file or directory";
}

class PresetStoreTest : public ::testing::Test {
protected:
    QString path(const QString& name) const { return folder_.path(QStringLiteral("presets/") + name); }

    QString profilePath(const QString& name) const { return path(QStringLiteral("profiles/") + name); }

    QString write(const QString& name, const QByteArray& bytes) const {
        return folder_.write(QStringLiteral("presets/") + name, bytes);
    }

    QString writeProfile(const QString& name, const QByteArray& bytes) const {
        return write(QStringLiteral("profiles/") + name, bytes);
    }

    QString write(const PrintPreset& preset) const {
        return write(filenameOf(preset.id), platform::writeJson(preset.toJson(), platform::JsonForm::pretty));
    }

    QStringList names() const {
        return QDir(path({})).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

    ManagedICCAsset import(const QByteArray& data, const QString& name = QStringLiteral("Canvas.icc")) const {
        return store_.importICC(QUrl::fromLocalFile(folder_.write(name, data)));
    }

    std::string importFailure(const QString& path) const {
        return failureOf([&] { static_cast<void>(store_.importICC(QUrl::fromLocalFile(path))); });
    }

    std::string loadingFailure() const {
        return failureOf([&] { static_cast<void>(store_.load()); });
    }

    std::string savingFailure(const PrintPreset& preset) const {
        return failureOf([&] { store_.save(preset); });
    }

    std::string listingFailure() const {
        return failureOf([&] { static_cast<void>(store_.listICCAssets()); });
    }

    std::string resolvingFailure(const ManagedICCAsset& asset) const {
        return failureOf([&] { static_cast<void>(store_.resolveICC(asset)); });
    }

    /// No preset can be loaded, saved or deleted, and the file of that name stays as it is.
    void expectUnreadable(const QString& filename, const QByteArray& bytes, const std::string& reason) const {
        write(filename, bytes);
        const std::string message = unreadable(filename, reason);
        EXPECT_EQ(loadingFailure(), message);
        EXPECT_EQ(savingFailure(numbered(77, QStringLiteral("new"), 0.0)), message);
        EXPECT_EQ(failureOf([&] { store_.remove(test::preset().id); }), message);
        EXPECT_EQ(TemporaryFolder::read(path(filename)), bytes);
        EXPECT_FALSE(QFileInfo::exists(path(filenameOf(numbered(77, {}, 0.0).id))));
    }

    TemporaryFolder folder_;
    PresetStore store_{QUrl::fromLocalFile(folder_.path(QStringLiteral("presets")))};
};

using PresetLoading = PresetStoreTest;
using PresetSaving = PresetStoreTest;
using PresetDeletion = PresetStoreTest;
using ProfileImport = PresetStoreTest;
using ProfileResolution = PresetStoreTest;
using ProfileListing = PresetStoreTest;

} // namespace

// The folder

TEST_F(PresetStoreTest, MakesItsFolders) {
    const QUrl directory = QUrl::fromLocalFile(folder_.path(QStringLiteral("a/b 画")));
    EXPECT_EQ(PresetStore(directory).directory(), directory);
    EXPECT_TRUE(QFileInfo(folder_.path(QStringLiteral("a/b 画/profiles"))).isDir());
    EXPECT_EQ(PresetStore(directory).load(), QList<PrintPreset>()) << "made once, used again";
}

TEST_F(PresetStoreTest, LivesInPresetsOfTheApplicationFolderByDefault) {
    const QByteArray place = test::inChildProcess([&] {
        qputenv("XDG_DATA_HOME", folder_.path().toUtf8());
        return PresetStore().directory().toLocalFile().toUtf8();
    });
    EXPECT_EQ(QString::fromUtf8(place), folder_.path(QStringLiteral("ORVEX/presets")));
    EXPECT_TRUE(QFileInfo(folder_.path(QStringLiteral("ORVEX/presets/profiles"))).isDir());
}

TEST_F(PresetStoreTest, FailsWhereNoFolderCanBe) {
    const QString file = folder_.write(QStringLiteral("file"), "");
    EXPECT_THROW(PresetStore(QUrl::fromLocalFile(file)), platform::FileSystemError);
    EXPECT_THROW(PresetStore(QUrl(QStringLiteral("https://example.com/"))), platform::FileSystemError);
    ASSERT_TRUE(QDir(folder_.path()).mkdir(QStringLiteral("other")));
    folder_.write(QStringLiteral("other/profiles"), "no folder");
    EXPECT_THROW(PresetStore(QUrl::fromLocalFile(folder_.path(QStringLiteral("other")))), platform::FileSystemError);
}

// Loading

TEST_F(PresetLoading, FindsNothingInAFreshFolder) {
    EXPECT_EQ(store_.load(), QList<PrintPreset>());
    EXPECT_EQ(names(), QStringList{QStringLiteral("profiles")});
}

TEST_F(PresetLoading, FailsAsItStandsWithoutTheFolder) {
    ASSERT_TRUE(QDir(path({})).removeRecursively());
    EXPECT_THROW(static_cast<void>(store_.load()), platform::FileSystemError);
    EXPECT_EQ(loadingFailure(), noSuchFile(folder_.path(QStringLiteral("presets"))));
}

TEST_F(PresetLoading, ReadsWhatAnotherProgramWrote) {
    const QString name = filenameOf(test::preset().id);
    write(name, test::storedFixture("9b2f4e1c-0d3a-4b5c-8d6e-7f8091a2b3c4.json"));
    EXPECT_EQ(store_.load(), QList{test::preset()});
}

TEST_F(PresetLoading, SortsByTheUpdateAndThenByTheNaturalOrderOfNames) {
    const QList<PrintPreset> expected{
        numbered(5, QStringLiteral("Zebra"), 20.5),      numbered(4, QStringLiteral("Canvas 2"), 10.0),
        numbered(3, QStringLiteral("Canvas 9"), 10.0),   numbered(2, QStringLiteral("Canvas 10"), 10.0),
        numbered(6, QStringLiteral("Canvas 100"), 10.0), numbered(1, QStringLiteral("Alpha"), -3.0)};
    for (const PrintPreset& preset : expected) {
        write(preset);
    }
    for (const QLocale& locale : {QLocale::c(), QLocale(QStringLiteral("zh_CN")), QLocale(QStringLiteral("en_US"))}) {
        QLocale::setDefault(locale); // the last is that of all tests
        EXPECT_EQ(store_.load(), expected) << locale.name().toStdString();
    }
}

TEST_F(PresetLoading, KeepsTheOrderOfFilesForPresetsThatNothingElseTellsApart) {
    const PrintPreset first = numbered(1, QStringLiteral("same"), 5.0);
    const PrintPreset second = numbered(2, QStringLiteral("same"), 5.0);
    write(second);
    write(first);
    EXPECT_EQ(store_.load(), (QList{first, second}));
}

TEST_F(PresetLoading, PassesOverWhatIsNoPreset) {
    write(test::preset());
    for (const char* other :
         {".hidden.json", "notes.txt", "a.json.bak", "json", "a.jsonx", ".json", "ajson", "a.json~"}) {
        write(QString::fromUtf8(other), "not JSON");
    }
    ASSERT_TRUE(QDir(path({})).mkdir(QStringLiteral(".folder.json")));
    ASSERT_TRUE(QDir(path({})).mkdir(QStringLiteral("folder")));
    writeProfile(QStringLiteral("a.json"), "not JSON");
    EXPECT_EQ(store_.load(), QList{test::preset()});
}

TEST_F(PresetLoading, TakesAnExtensionInUpperCaseForThatOfAPreset) {
    expectUnreadable(QStringLiteral("a.JSON"), "not JSON", "Not valid JSON (at byte 1).");
    ASSERT_TRUE(QFile::remove(path(QStringLiteral("a.JSON"))));
    const QString name = QString(filenameOf(test::preset().id)).replace(QStringLiteral("json"), QStringLiteral("Json"));
    expectUnreadable(name, test::text(test::preset().toJson()), badName);
}

TEST_F(PresetLoading, DropsTheConfirmationThatWasStored) {
    PrintPreset preset = test::preset();
    preset.colorWorkflow.driverColorCorrectionDisabledConfirmed = true;
    const QString file = write(preset);
    const QByteArray bytes = TemporaryFolder::read(file);
    EXPECT_EQ(store_.load(), QList{test::preset()});
    EXPECT_EQ(TemporaryFolder::read(file), bytes) << "nothing is rewritten";
}

TEST_F(PresetLoading, NeedsTheIdInLowerCaseAsTheFileName) {
    const QByteArray bytes = test::text(test::preset().toJson());
    const QString id = test::preset().id.toString(QUuid::WithoutBraces);
    for (const QString& name : {id.toUpper() + QStringLiteral(".json"), u'{' + id + QStringLiteral("}.json"),
                                QStringLiteral("preset.json"), id + QStringLiteral(" 2.json")}) {
        expectUnreadable(name, bytes, badName);
        ASSERT_TRUE(QFile::remove(path(name)));
    }
}

TEST_F(PresetLoading, RefusesTheOtherOfTwoFilesWithOneId) {
    write(test::preset());
    expectUnreadable(QStringLiteral("00000000-0000-0000-0000-000000000000.json"), test::text(test::preset().toJson()),
                     badName);
    expectUnreadable(QStringLiteral("00000000-0000-0000-0000-000000000000.json"), "{}",
                     "schemaVersion: The required key is missing.");
}

TEST_F(PresetLoading, EndsWithTheFirstFileInTheOrderOfTheirScalars) {
    write(QStringLiteral("a.json"), "");
    write(QStringLiteral("B.json"), "[]");
    EXPECT_EQ(loadingFailure(), unreadable(QStringLiteral("B.json"), "Expected an object."));
    ASSERT_TRUE(QFile::remove(path(QStringLiteral("B.json"))));
    write(QStringLiteral("画.json"), "[]");
    EXPECT_EQ(loadingFailure(), unreadable(QStringLiteral("a.json"), "Not valid JSON (at byte 0)."));
}

TEST_F(PresetLoading, ChecksEachFileInOrder) {
    const QString name = QStringLiteral("a.json");
    PrintPreset preset = test::fullPreset();
    preset.schemaVersion = 2;
    ASSERT_TRUE(QDir(path({})).mkdir(name));
    EXPECT_EQ(loadingFailure(), unreadable(name, noRegularFile(name)));
    ASSERT_TRUE(QDir(path({})).rmdir(name));
    expectUnreadable(name, "{", "Not valid JSON (at byte 1).");
    QJsonObject incomplete = preset.toJson();
    incomplete.remove(u"mediaName");
    expectUnreadable(name, test::text(incomplete), "mediaName: The required key is missing.");
    expectUnreadable(name, test::text(preset.toJson()),
                     "This preset version is unsupported. The original file was kept.");
    preset.schemaVersion = 1;
    expectUnreadable(name, test::text(preset.toJson()), noSuchFile(profilePath(preset.iccAsset->filename)));
    preset.iccAsset = import(profileData());
    expectUnreadable(name, test::text(preset.toJson()), badName);
    ASSERT_TRUE(QFile::rename(path(name), path(filenameOf(preset.id))));
    preset.colorWorkflow.driverColorCorrectionDisabledConfirmed = false;
    EXPECT_EQ(store_.load(), QList{preset});
}

TEST_F(PresetLoading, NeedsRegularFiles) {
    const QString name = filenameOf(test::preset().id);
    const QString real = folder_.write(QStringLiteral("real"), test::text(test::preset().toJson()));
    ASSERT_TRUE(QFile::link(real, path(name)));
    EXPECT_EQ(loadingFailure(), unreadable(name, noRegularFile(name)));
    ASSERT_TRUE(QFile::remove(path(name)));
    ASSERT_TRUE(QFile::link(QStringLiteral("missing"), path(name)));
    EXPECT_EQ(loadingFailure(), unreadable(name, noRegularFile(name)));
    ASSERT_TRUE(QFile::remove(path(name)));
    ASSERT_EQ(::mkfifo(path(name).toUtf8().constData(), 0600), 0);
    EXPECT_EQ(loadingFailure(), unreadable(name, noRegularFile(name)));
    EXPECT_EQ(savingFailure(test::preset()), unreadable(name, noRegularFile(name)));
    ASSERT_TRUE(QFile::remove(path(name)));
    EXPECT_EQ(loadingFailure(), "(none)");
}

TEST_F(PresetLoading, FailsForANameThatIsNoText) {
    const QByteArray native = path({}).toUtf8() + "a\xFF.json";
    const int file = ::open(native.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_GE(file, 0);
    ::close(file);
    EXPECT_TRUE(loadingFailure().starts_with("Cannot read preset a")) << loadingFailure();
    EXPECT_EQ(::access(native.constData(), F_OK), 0);
    EXPECT_EQ(::unlink(native.constData()), 0);
}

TEST_F(PresetLoading, FailsForAFileWithoutPermission) {
    const QString file = write(test::preset());
    ASSERT_EQ(::chmod(folder_.path().toUtf8().constData(), 0755), 0);
    ASSERT_EQ(::chmod(path({}).toUtf8().constData(), 0755), 0);
    ASSERT_EQ(::chmod(file.toUtf8().constData(), 0), 0);
    const QByteArray failure = test::inChildProcess([&]() -> QByteArray {
        return test::becomeOrdinaryUser() ? QByteArray::fromStdString(loadingFailure()) : QByteArray("still root");
    });
    EXPECT_EQ(failure.toStdString(),
              unreadable(filenameOf(test::preset().id), file.toStdString() + ": Permission denied"));
}

TEST_F(PresetLoading, NeedsTheProfileOfEveryPreset) {
    PrintPreset preset = test::fullPreset();
    preset.colorWorkflow = {};
    preset.iccAsset = import(profileData());
    const QString stored = profilePath(preset.iccAsset->filename);
    const QString name = filenameOf(preset.id);
    write(preset);
    EXPECT_EQ(store_.load(), QList{preset});
    for (const qsizetype offset : {qsizetype{0}, qsizetype{200}, profileData().size() - 1}) {
        QByteArray altered = profileData();
        altered[offset] = static_cast<char>(altered[offset] ^ 1);
        writeProfile(preset.iccAsset->filename, altered);
        EXPECT_EQ(loadingFailure(),
                  unreadable(name, "ICC profile verification failed; the file may have been replaced: Canvas.icc."));
        EXPECT_EQ(savingFailure(numbered(2, QStringLiteral("new"), 0.0)), loadingFailure());
        EXPECT_EQ(TemporaryFolder::read(stored), altered) << "nothing is repaired";
    }
    ASSERT_TRUE(QFile::remove(stored));
    EXPECT_EQ(loadingFailure(), unreadable(name, noSuchFile(stored)));
    const QString real = folder_.write(QStringLiteral("real"), profileData());
    ASSERT_TRUE(QFile::link(real, stored));
    EXPECT_EQ(loadingFailure(), unreadable(name, noRegularFile(preset.iccAsset->filename)));
    ASSERT_TRUE(QFile::remove(stored));
    writeProfile(preset.iccAsset->filename, profileData());
    EXPECT_EQ(store_.load(), QList{preset}) << "repaired by hand";
}

TEST_F(PresetLoading, NamesTheFirstFileOfThoseThatUseAnAlteredProfile) {
    PrintPreset first = numbered(1, QStringLiteral("a"), 0.0);
    PrintPreset second = numbered(2, QStringLiteral("b"), 0.0);
    first.iccAsset = second.iccAsset = import(profileData());
    write(first);
    write(second);
    writeProfile(first.iccAsset->filename, profileData() + '\0');
    EXPECT_TRUE(loadingFailure().starts_with("Cannot read preset 00000001-")) << loadingFailure();
    ASSERT_TRUE(QFile::remove(path(filenameOf(first.id))));
    EXPECT_TRUE(loadingFailure().starts_with("Cannot read preset 00000002-")) << loadingFailure();
}

TEST_F(PresetLoading, FailsWhereverAFileIsCut) {
    const QByteArray whole = platform::writeJson(test::fullPreset().toJson(), platform::JsonForm::pretty);
    const QString name = filenameOf(test::preset().id);
    for (int percent = 0; percent < 100; percent += 5) {
        write(name, whole.first(whole.size() * percent / 100));
        EXPECT_TRUE(
            loadingFailure().starts_with("Cannot read preset " + name.toStdString() + ": Not valid JSON (at byte "))
            << loadingFailure();
    }
}

TEST_F(PresetLoading, NamesTheKeyPathOfAWrongType) {
    QJsonObject json = test::preset().toJson();
    QJsonObject settings = json[u"settings"].toObject();
    settings[u"marginMM"] = QStringLiteral("10");
    json[u"settings"] = settings;
    expectUnreadable(QStringLiteral("a.json"), test::text(json), "settings.marginMM: Expected a number.");
    expectUnreadable(QStringLiteral("a.json"), "[]", "Expected an object.");
}

TEST_F(PresetLoading, KeepsPlaceholdersInNamesAsTheyAre) {
    expectUnreadable(QStringLiteral("%1 %2 %L1.json"), "[]", "Expected an object.");
}

TEST_F(PresetLoading, FailsInChinese) {
    const test::InChinese chinese;
    write(QStringLiteral("a.json"), test::text(test::preset().toJson()));
    EXPECT_EQ(loadingFailure(), "无法读取预设 a.json。原文件已保留，请修复或移走该文件后再继续。"
                                "原因：预设 ID 与文件名不一致，或与其他预设重复。");
    ASSERT_TRUE(QFile::remove(path(QStringLiteral("a.json"))));
    ASSERT_TRUE(QDir(path({})).mkdir(QStringLiteral("a.json")));
    EXPECT_EQ(loadingFailure(), "无法读取预设 a.json。原文件已保留，请修复或移走该文件后再继续。"
                                "原因：文件不存在、不是普通文件，或是链接：a.json。");
}

TEST_F(PresetLoading, TakesAnExtensionForItselfInCapitalsOnly) {
    write(QStringLiteral("x.j\u017Fon"), "kept"); // a long s, which is no s but in the folding of letters
    EXPECT_EQ(store_.load(), QList<PrintPreset>());
}

TEST_F(PresetSaving, WritesNoPresetThatCouldNotBeReadAgain) {
    PrintPreset preset = test::preset();
    preset.mediaName = QString(1 << 22, u'x');
    const std::string file = path(filenameOf(preset.id)).toStdString();
    EXPECT_EQ(savingFailure(preset), file + ": File too large");
    EXPECT_EQ(store_.load(), QList<PrintPreset>());
}

TEST_F(PresetLoading, ReadsNoPresetThatIsFarTooLarge) {
    write(QStringLiteral("a.json"), QByteArray((1 << 22) + 1, ' '));
    EXPECT_EQ(loadingFailure(),
              unreadable(QStringLiteral("a.json"), path(QStringLiteral("a.json")).toStdString() + ": File too large"));
}

// Saving

TEST_F(PresetSaving, WritesAFileNamedInLowerCase) {
    const PrintPreset saved = store_.save(test::preset());
    const QString file = path(QStringLiteral("9b2f4e1c-0d3a-4b5c-8d6e-7f8091a2b3c4.json"));
    EXPECT_EQ(TemporaryFolder::read(file).toStdString(),
              platform::writeJson(saved.toJson(), platform::JsonForm::pretty).toStdString());
    EXPECT_TRUE(TemporaryFolder::read(file).contains(R"("mediaName": "HP/Canvas \"matte\"")"));
    EXPECT_TRUE(TemporaryFolder::read(file).contains("\"9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4\""));
    EXPECT_EQ(names(), (QStringList{QFileInfo(file).fileName(), QStringLiteral("profiles")}));
    EXPECT_EQ(store_.load(), QList{saved});
}

TEST_F(PresetSaving, ReturnsWhatWasStored) {
    PrintPreset preset = test::preset();
    preset.name = QStringLiteral(" \t\n Canvas  9\u3000\u00A0\r\n");
    preset.colorWorkflow.driverColorCorrectionDisabledConfirmed = true;
    const double before = platform::Timestamp::now().secondsSince2001;
    const PrintPreset saved = store_.save(preset);
    EXPECT_GE(saved.updatedAt.secondsSince2001, before);
    EXPECT_LE(saved.updatedAt.secondsSince2001, platform::Timestamp::now().secondsSince2001);
    PrintPreset expected = test::preset();
    expected.name = QStringLiteral("Canvas  9");
    expected.updatedAt = saved.updatedAt;
    EXPECT_EQ(saved, expected);
    const QByteArray bytes = TemporaryFolder::read(path(filenameOf(preset.id)));
    EXPECT_TRUE(bytes.contains("\"driverColorCorrectionDisabledConfirmed\": false"));
}

TEST_F(PresetSaving, KeepsTheFirstCreationAndRenewsTheUpdate) {
    const PrintPreset other = store_.save(numbered(1, QStringLiteral("other"), 0.0));
    const PrintPreset first = store_.save(test::preset());
    const PrintPreset another = store_.save(numbered(2, QStringLiteral("another"), 0.0));
    PrintPreset changed = test::preset();
    changed.name = QStringLiteral("changed");
    changed.createdAt = {std::numeric_limits<double>::quiet_NaN()};
    changed.updatedAt = {std::numeric_limits<double>::infinity()};
    const PrintPreset second = store_.save(changed);
    EXPECT_EQ(second.createdAt, first.createdAt);
    EXPECT_GT(second.updatedAt.secondsSince2001, first.updatedAt.secondsSince2001);
    EXPECT_EQ(second.name, QStringLiteral("changed"));
    EXPECT_EQ(store_.load(), (QList{second, another, other})) << "what was saved last comes first";
}

TEST_F(PresetSaving, TrimsTheNameBeforeItIsCounted) {
    PrintPreset preset = test::preset();
    preset.name = QString(50, u' ') + QString(200, u'n') + QString(50, u'\n');
    EXPECT_EQ(store_.save(preset).name, QString(200, u'n'));
    preset.name = QString(201, u'n');
    EXPECT_EQ(savingFailure(preset), "Preset names must contain 1–200 characters.");
    preset.name = QStringLiteral(" \n ");
    EXPECT_EQ(savingFailure(preset), "Preset names must contain 1–200 characters.");
    EXPECT_EQ(store_.load().first().name, QString(200, u'n'));
}

TEST_F(PresetSaving, RefusesWhatBreaksARuleAndWritesNothing) {
    PrintPreset preset = test::preset();
    preset.schemaVersion = 2;
    EXPECT_EQ(savingFailure(preset), "This preset version is unsupported. The original file was kept.");
    EXPECT_THROW(store_.save(preset), OrvexError);
    preset = test::preset();
    preset.createdAt = {std::numeric_limits<double>::quiet_NaN()};
    EXPECT_EQ(savingFailure(preset), "The preset date is invalid.");
    preset = test::preset();
    preset.settings.widthMM = 0.0;
    EXPECT_EQ(savingFailure(preset), preset.settings.validationError()->toStdString());
    preset = test::preset();
    preset.driverQuality->keyword = QStringLiteral("CutMedia");
    EXPECT_EQ(savingFailure(preset), preset.driverQuality->validationError()->toStdString());
    preset = test::preset();
    preset.colorWorkflow.mode = ColorManagementMode::appManaged;
    EXPECT_EQ(savingFailure(preset), "An app-managed color preset must include an imported ICC profile.");
    EXPECT_EQ(names(), QStringList{QStringLiteral("profiles")});
}

TEST_F(PresetSaving, TakesADriverManagedPresetWithAProfile) {
    PrintPreset preset = test::preset();
    preset.iccAsset = import(profileData());
    EXPECT_EQ(store_.save(preset).iccAsset, preset.iccAsset);
    preset.colorWorkflow.mode = ColorManagementMode::appManaged;
    EXPECT_EQ(store_.save(preset).colorWorkflow.mode, ColorManagementMode::appManaged);
}

TEST_F(PresetSaving, VerifiesTheProfileAfterTheRules) {
    PrintPreset preset = test::fullPreset();
    preset.name.clear();
    EXPECT_EQ(savingFailure(preset), "Preset names must contain 1–200 characters.");
    preset.name = QStringLiteral("n");
    EXPECT_EQ(savingFailure(preset), noSuchFile(profilePath(preset.iccAsset->filename)));
    preset.iccAsset->filename = QStringLiteral("../../a.icc");
    EXPECT_EQ(savingFailure(preset),
              "Invalid ICC asset reference. Presets may reference only content-verified files managed by the app.");
    EXPECT_EQ(names(), QStringList{QStringLiteral("profiles")});
}

TEST_F(PresetSaving, LoadsBeforeItLooksAtThePreset) {
    write(QStringLiteral("a.json"), "[]");
    PrintPreset preset = test::preset();
    preset.schemaVersion = 2;
    EXPECT_EQ(savingFailure(preset), unreadable(QStringLiteral("a.json"), "Expected an object."));
}

TEST_F(PresetSaving, ReplacesNoFileThatCannotBeRead) {
    expectUnreadable(filenameOf(test::preset().id), "damaged", "Not valid JSON (at byte 0).");
    EXPECT_NE(savingFailure(test::preset()), "(none)");
    EXPECT_EQ(TemporaryFolder::read(path(filenameOf(test::preset().id))), "damaged");
}

TEST_F(PresetSaving, KeepsTheOldFileWhenItCannotBeWritten) {
    const PrintPreset first = store_.save(test::preset());
    const QByteArray bytes = TemporaryFolder::read(path(filenameOf(first.id)));
    const QByteArray answer = test::inChildProcess([&]() -> QByteArray {
        return test::limitFileSize(10) ? QByteArray::fromStdString(savingFailure(first)) : QByteArray("no limit");
    });
    EXPECT_EQ(answer, path(filenameOf(first.id)).toUtf8() + ": File too large");
    EXPECT_EQ(TemporaryFolder::read(path(filenameOf(first.id))), bytes);
    EXPECT_EQ(names(), (QStringList{filenameOf(first.id), QStringLiteral("profiles")}));
}

TEST_F(PresetSaving, ClearsAwayWhatKilledProcessesLeft) {
    const QString tail = QStringLiteral(".01234567-89ab-cdef-0123-456789abcdef.tmp");
    write(u'.' + filenameOf(numbered(9, {}, 0.0).id) + tail, "left");
    writeProfile(QStringLiteral(".a.icc") + tail, "left");
    const PrintPreset saved = store_.save(test::preset());
    EXPECT_EQ(names(), (QStringList{filenameOf(saved.id), QStringLiteral("profiles")}));
    const ManagedICCAsset asset = import(profileData());
    EXPECT_EQ(QDir(profilePath({})).entryList(QDir::Files | QDir::Hidden), QStringList{asset.filename});
}

TEST_F(PresetSaving, IsSeenByAnotherStoreOfTheSameFolder) {
    const PresetStore other(store_.directory());
    const PrintPreset saved = store_.save(test::preset());
    EXPECT_EQ(other.load(), QList{saved});
    other.remove(saved.id);
    EXPECT_EQ(store_.load(), QList<PrintPreset>());
}

// Deletion

TEST_F(PresetDeletion, RemovesThePresetAndKeepsItsProfile) {
    PrintPreset preset = test::preset();
    preset.iccAsset = import(profileData());
    const PrintPreset other = store_.save(numbered(1, QStringLiteral("other"), 0.0));
    store_.save(preset);
    store_.remove(preset.id);
    EXPECT_EQ(store_.load(), QList{other});
    EXPECT_EQ(TemporaryFolder::read(profilePath(preset.iccAsset->filename)), profileData());
}

TEST_F(PresetDeletion, OfAnUnknownPresetDoesNothing) {
    const PrintPreset saved = store_.save(test::preset());
    store_.remove(QUuid::createUuid());
    store_.remove(QUuid());
    EXPECT_EQ(store_.load(), QList{saved});
}

TEST_F(PresetDeletion, PassesAFailureOn) {
    const PrintPreset saved = store_.save(test::preset());
    ASSERT_EQ(::chmod(folder_.path().toUtf8().constData(), 0755), 0);
    ASSERT_EQ(::chmod(path({}).toUtf8().constData(), 0555), 0);
    ASSERT_EQ(::chmod(path(filenameOf(saved.id)).toUtf8().constData(), 0644), 0);
    const QByteArray failure = test::inChildProcess([&]() -> QByteArray {
        return test::becomeOrdinaryUser() ? QByteArray::fromStdString(failureOf([&] { store_.remove(saved.id); }))
                                          : QByteArray("still root");
    });
    ASSERT_EQ(::chmod(path({}).toUtf8().constData(), 0755), 0);
    EXPECT_EQ(failure, path(filenameOf(saved.id)).toUtf8() + ": Permission denied");
    EXPECT_EQ(store_.load(), QList{saved});
}

// Importing profiles

TEST_F(ProfileImport, CopiesTheProfileUnderItsDigest) {
    const ManagedICCAsset asset = import(profileData(), QStringLiteral("My 画 %20#1.icm"));
    EXPECT_EQ(asset, test::assetOf(platform::sha256Hex(profileData()), QStringLiteral("My 画 %20#1.icm")));
    EXPECT_EQ(TemporaryFolder::read(profilePath(asset.filename)), profileData());
    EXPECT_EQ(QDir(profilePath({})).entryList(QDir::Files | QDir::Hidden), QStringList{asset.filename});
    EXPECT_EQ(store_.resolveICC(asset), QUrl::fromLocalFile(profilePath(asset.filename)));
}

TEST_F(ProfileImport, OfTheSameProfileTwiceKeepsOneFileAndTheLatestName) {
    const ManagedICCAsset first = import(profileData(), QStringLiteral("first.icc"));
    const auto inode = [&] {
        struct stat facts {};

        EXPECT_EQ(::stat(profilePath(first.filename).toUtf8().constData(), &facts), 0);
        return facts.st_ino;
    };
    const auto stored = inode();
    const ManagedICCAsset second = import(profileData(), QStringLiteral("second.icc"));
    EXPECT_EQ(second.displayName, QStringLiteral("second.icc"));
    EXPECT_EQ(second.filename, first.filename);
    EXPECT_EQ(inode(), stored) << "the stored file is left alone";
    const ManagedICCAsset other = import(profileData(2.2), QStringLiteral("first.icc"));
    EXPECT_NE(other.filename, first.filename);
}

TEST_F(ProfileImport, TakesProfilesOfEveryKind) {
    for (const QByteArray& data : {icc::saved(icc::cmyk()), icc::saved(icc::gray(2.2)), icc::saved(icc::deviceLink()),
                                   icc::saved(icc::rgb(1.8, cmsSigInputClass))}) {
        EXPECT_EQ(import(data).sha256, platform::sha256Hex(data));
    }
}

TEST_F(ProfileImport, TakesARegularFileAlone) {
    const QString real = folder_.write(QStringLiteral("real.icc"), profileData());
    ASSERT_TRUE(QFile::link(real, folder_.path(QStringLiteral("link.icc"))));
    ASSERT_TRUE(QFile::link(QStringLiteral("missing"), folder_.path(QStringLiteral("dangling.icc"))));
    ASSERT_EQ(::mkfifo(folder_.path(QStringLiteral("fifo.icc")).toUtf8().constData(), 0600), 0);
    ASSERT_TRUE(QDir(folder_.path()).mkdir(QStringLiteral("folder.icc")));
    for (const char* name : {"link.icc", "dangling.icc", "fifo.icc", "folder.icc"}) {
        const QString text = QString::fromUtf8(name);
        EXPECT_EQ(importFailure(folder_.path(text)), noRegularFile(text)) << name;
    }
    const QString missing = folder_.path(QStringLiteral("missing.icc"));
    EXPECT_EQ(importFailure(missing), noSuchFile(missing));
    EXPECT_NE(failureOf([&] { static_cast<void>(store_.importICC(QUrl(QStringLiteral("https://a.example/b.icc")))); }),
              "(none)");
    EXPECT_EQ(QDir(profilePath({})).entryList(QDir::Files | QDir::Hidden), QStringList());
}

TEST_F(ProfileImport, FollowsLinksToTheFolderOfTheProfile) {
    ASSERT_TRUE(QDir(folder_.path()).mkdir(QStringLiteral("folder")));
    ASSERT_TRUE(QFile::link(QStringLiteral("folder"), folder_.path(QStringLiteral("link"))));
    folder_.write(QStringLiteral("folder/a.icc"), profileData());
    EXPECT_EQ(importFailure(folder_.path(QStringLiteral("link/a.icc"))), "(none)");
}

TEST_F(ProfileImport, TakesNothingThatIsNoProfile) {
    QByteArray altered = profileData();
    altered.replace(36, 4, "acsP");
    for (const QByteArray& data : {QByteArray(), QByteArray("text"), profileData().first(127), profileData().first(128),
                                   profileData().chopped(1), QByteArray(5000, 'x'), altered}) {
        EXPECT_EQ(importFailure(folder_.write(QStringLiteral("a.icc"), data)), badProfile) << data.size();
    }
    EXPECT_EQ(QDir(profilePath({})).entryList(QDir::Files | QDir::Hidden), QStringList());
}

TEST_F(ProfileImport, DoesNotReplaceAStoredFileThatIsNoLongerWhatItsNameSays) {
    const ManagedICCAsset asset = import(profileData());
    writeProfile(asset.filename, profileData(2.2));
    EXPECT_EQ(importFailure(folder_.write(QStringLiteral("again.icc"), profileData())),
              "ICC profile verification failed; the file may have been replaced: again.icc.");
    EXPECT_EQ(TemporaryFolder::read(profilePath(asset.filename)), profileData(2.2));
    ASSERT_TRUE(QFile::remove(profilePath(asset.filename)));
    ASSERT_TRUE(QFile::link(folder_.path(QStringLiteral("again.icc")), profilePath(asset.filename)));
    EXPECT_EQ(importFailure(folder_.path(QStringLiteral("again.icc"))), noRegularFile(asset.filename));
    EXPECT_TRUE(QFileInfo(profilePath(asset.filename)).isSymLink());
}

TEST_F(ProfileImport, LeavesNothingBehindWhenItCannotBeWritten) {
    const QString file = folder_.write(QStringLiteral("a.icc"), profileData());
    const QByteArray answer = test::inChildProcess([&]() -> QByteArray {
        return test::limitFileSize(10) ? QByteArray::fromStdString(importFailure(file)) : QByteArray("no limit");
    });
    EXPECT_TRUE(answer.endsWith(": File too large")) << answer.constData();
    EXPECT_EQ(QDir(profilePath({})).entryList(QDir::Files | QDir::Hidden), QStringList());
}

// Resolving profiles

TEST_F(ProfileResolution, ChecksTheReferenceFirst) {
    ManagedICCAsset asset = import(profileData());
    asset.filename = QStringLiteral("../profiles/") + asset.filename;
    EXPECT_EQ(resolvingFailure(asset),
              "Invalid ICC asset reference. Presets may reference only content-verified files managed by the app.");
    asset = import(profileData());
    asset.displayName = QStringLiteral(" ");
    EXPECT_EQ(resolvingFailure(asset), "The ICC profile name cannot be empty.");
}

TEST_F(ProfileResolution, NeedsTheVeryFile) {
    const ManagedICCAsset asset = import(profileData());
    const QString stored = profilePath(asset.filename);
    EXPECT_EQ(resolvingFailure(test::missingAsset()), noSuchFile(profilePath(test::missingAsset().filename)));
    writeProfile(asset.filename, {});
    EXPECT_EQ(resolvingFailure(asset), "ICC profile verification failed; the file may have been replaced: Canvas.icc.");
    ASSERT_TRUE(QFile::remove(stored));
    ASSERT_TRUE(QFile::link(folder_.path(QStringLiteral("Canvas.icc")), stored));
    EXPECT_EQ(resolvingFailure(asset), noRegularFile(asset.filename)) << "a link to the same content is a link";
    ASSERT_TRUE(QFile::remove(stored));
    ASSERT_TRUE(QDir().mkdir(stored));
    EXPECT_EQ(resolvingFailure(asset), noRegularFile(asset.filename));
}

TEST_F(ProfileResolution, TakesNothingThatIsNoProfileThoughItHasTheRightName) {
    for (const QByteArray& data : {QByteArray(), QByteArray("text"), profileData().first(127), QByteArray(5000, 'x'),
                                   profileData().chopped(1)}) {
        const ManagedICCAsset asset = test::assetOf(platform::sha256Hex(data), QStringLiteral("a"));
        writeProfile(asset.filename, data);
        EXPECT_EQ(resolvingFailure(asset), badProfile) << data.size();
    }
}

TEST_F(ProfileResolution, FailsInChinese) {
    const ManagedICCAsset asset = import(profileData());
    writeProfile(asset.filename, "other");
    const test::InChinese chinese;
    EXPECT_EQ(resolvingFailure(asset), "ICC 配置文件校验失败，文件可能已被替换：Canvas.icc。");
    EXPECT_EQ(importFailure(folder_.write(QStringLiteral("a.icc"), "text")), "无法解析此 ICC 配置文件。");
    EXPECT_EQ(importFailure(folder_.path()),
              "文件不存在、不是普通文件，或是链接：" + QFileInfo(folder_.path()).fileName().toStdString() + "。");
}

// Listing profiles

TEST_F(ProfileListing, FindsNothingInAFreshFolder) {
    EXPECT_EQ(store_.listICCAssets(), QList<ManagedICCAsset>());
}

TEST_F(ProfileListing, IsInTheOrderOfFileNamesWithTheDescriptionsOfTheProfiles) {
    QStringList expected;
    for (const double gamma : {1.2, 1.6, 1.8, 2.0, 2.2}) {
        expected.append(import(icc::saved(icc::rgb(gamma, cmsSigDisplayClass, L"Canvas " + std::to_wstring(gamma))),
                               QStringLiteral("source.icc"))
                            .filename);
    }
    expected.sort();
    QStringList found;
    for (const ManagedICCAsset& asset : store_.listICCAssets()) {
        found.append(asset.filename);
        EXPECT_TRUE(asset.displayName.startsWith(QStringLiteral("Canvas ")));
        EXPECT_EQ(asset.filename, asset.sha256 + QStringLiteral(".icc"));
        EXPECT_EQ(resolvingFailure(asset), "(none)");
    }
    EXPECT_EQ(found, expected);
}

TEST_F(ProfileListing, ShowsTheFileNameOfAProfileWithoutADescription) {
    const QByteArray described = profileData();
    const QByteArray bare = QByteArray(described).replace(icc::entryOf(described, "desc"), 4, "xxxx");
    const ManagedICCAsset asset = import(bare);
    ASSERT_EQ(store_.listICCAssets().size(), 1);
    EXPECT_EQ(store_.listICCAssets().first().displayName, asset.filename);
}

TEST_F(ProfileListing, PassesOverWhatIsNoProfileByItsName) {
    import(profileData());
    for (const char* other : {".hidden.icc", ".icc", "a.icm", "a.icc.bak", "icc", "notes.txt"}) {
        writeProfile(QString::fromUtf8(other), "other");
    }
    ASSERT_TRUE(QDir(profilePath({})).mkdir(QStringLiteral("folder")));
    EXPECT_EQ(store_.listICCAssets().size(), 1);
}

TEST_F(ProfileListing, FailsAsAWholeForAFileWithAnotherName) {
    const ManagedICCAsset asset = import(profileData());
    constexpr auto badAsset =
        "Invalid ICC asset reference. Presets may reference only content-verified files managed by the app.";
    const QString digest = platform::sha256Hex(profileData(2.2));
    for (const QString& name :
         {QStringLiteral("canvas.icc"), digest.toUpper() + QStringLiteral(".icc"), digest + QStringLiteral(".ICC"),
          asset.sha256.chopped(1) + QStringLiteral("0.icc"), QStringLiteral(" ") + digest + QStringLiteral(".icc")}) {
        writeProfile(name, profileData(2.2));
        EXPECT_EQ(listingFailure(), badAsset) << name.toStdString();
        ASSERT_TRUE(QFile::remove(profilePath(name)));
    }
    EXPECT_EQ(listingFailure(), "(none)");
}

TEST_F(ProfileListing, FailsForAFileThatIsNoProfile) {
    writeProfile(QStringLiteral("a.icc"), "text");
    EXPECT_EQ(listingFailure(), badProfile);
    writeProfile(QStringLiteral("a.icc"), profileData().first(127));
    EXPECT_EQ(listingFailure(), badProfile);
    ASSERT_TRUE(QFile::remove(profilePath(QStringLiteral("a.icc"))));
    const ManagedICCAsset asset = import(profileData());
    ASSERT_TRUE(QFile::remove(profilePath(asset.filename)));
    ASSERT_TRUE(QFile::link(folder_.path(QStringLiteral("Canvas.icc")), profilePath(asset.filename)));
    EXPECT_EQ(listingFailure(), noRegularFile(asset.filename));
}

TEST_F(ProfileListing, FailsWithoutTheFolder) {
    ASSERT_TRUE(QDir().rmdir(profilePath({}).chopped(1)));
    EXPECT_EQ(listingFailure(), noSuchFile(profilePath({}).chopped(1)));
}

TEST_F(ProfileImport, LeavesNothingOfAProfileWithoutAName) {
    const QByteArray profile = test::icc::saved(test::icc::rgb(2.2));
    EXPECT_EQ(importFailure(folder_.write(QStringLiteral("\u3000 "), profile)),
              "The ICC profile name cannot be empty.");
    EXPECT_EQ(store_.listICCAssets(), QList<ManagedICCAsset>());
}

} // namespace orvex
