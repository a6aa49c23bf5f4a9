// Layout files that cannot be used: what is there stays as it is, and the session goes on.

#include "CanvasTest.h"
#include "InChinese.h"
#include "LayoutFile.h"

#include <sys/stat.h>
#include <unistd.h>

namespace orvex {
namespace {

using test::layoutFile;
using test::TemporaryFolder;

const QString notRead = QStringLiteral("The autosaved layout could not be read. The original file has been retained. "
                                       "Save the layout as a new file.");
const char* const badData = "The layout file version or data is invalid. The original file has been retained.";

/// The layout file with one text in place of another.
QByteArray changed(const QByteArray& from, const QByteArray& to) {
    QByteArray file(layoutFile);
    if (!file.contains(from)) {
        throw std::runtime_error("the layout file lacks what a test changes");
    }
    return file.replace(file.indexOf(from), from.size(), to);
}

/// The layout file without the line of a key.
QByteArray without(const QByteArray& key) {
    return changed('"' + key + "\":", '"' + key.toUpper() + "\":");
}

struct BadFile {
    const char* name;
    QByteArray bytes;
    const char* words; ///< what the message contains
};

const QList<BadFile>& badFiles() {
    static const QList<BadFile> files{
        {"Empty", "", "Not valid JSON"},
        {"OneByte", "{", "Not valid JSON"},
        {"Blank", "  \n\n", "Not valid JSON"},
        {"NulBytes", QByteArray(4096, '\0'), "Not valid JSON"},
        {"CutInTheMiddle", QByteArray(layoutFile).left(400), "Not valid JSON"},
        {"CutBeforeTheEnd", QByteArray(layoutFile).chopped(2), "Not valid JSON"},
        {"TwoObjects", QByteArray(layoutFile) + layoutFile, "Not valid JSON"},
        {"BadUtf8", changed("art1\",\n", "art\xff\",\n"), "Not valid JSON"},
        {"AnArray", "[]", ""},
        {"ANumber", "1", ""},
        {"Deep", QByteArray(5000, '[') + QByteArray(5000, ']'), "Not valid JSON"},
        {"Version2", changed("\"version\": 1", "\"version\": 2"), badData},
        {"Version0", changed("\"version\": 1", "\"version\": 0"), badData},
        {"VersionOfText", changed("\"version\": 1", "\"version\": \"1\""), "version"},
        {"VersionWithFraction", changed("\"version\": 1", "\"version\": 1.5"), "version"},
        {"LayoutVersion2", changed("\"schemaVersion\": 1", "\"schemaVersion\": 2"), badData},
        {"NoVersion", without("version"), "version"},
        {"NoLayout", without("layout"), "layout"},
        {"NoDescriptions", without("sizingDescriptions"), "sizingDescriptions"},
        {"NoGap", without("gapInches"), "gapInches"},
        {"NoSchemaVersion", without("schemaVersion"), "layout.schemaVersion"},
        {"NoItems", without("items"), "layout.items"},
        {"NoTitle", without("title"), "title"},
        {"NoSource", without("sourceURL"), "sourceURL"},
        {"NegativeGap", changed("\"gapInches\": 0.25", "\"gapInches\": -0.25"), badData},
        {"HugeGap", changed("\"gapInches\": 0.25", "\"gapInches\": 1e999"), ""},
        {"NarrowRoll", changed("\"widthInches\": 60", "\"widthInches\": 5"), "Roll width must be a valid value"},
        {"WideRoll", changed("\"widthInches\": 60", "\"widthInches\": 60.5"), "Roll width must be a valid value"},
        {"ArtworkBesideTheRoll", changed("\"xInches\": 1.5", "\"xInches\": 50"),
         "The complete manual-trim frame must lie within the 60-inch roll."},
        {"DistortedArtwork", changed("\"pixelHeight\": 20000", "\"pixelHeight\": 20001"),
         "do not match the pixel aspect ratio"},
        {"BadSelection", changed("\"selection\": \"0", "\"selection\": \"x"), "selection"},
        {"RemoteSource", changed("file:///images", "https://example.org"), "local source image file"},
    };
    return files;
}

class UnreadableLayout : public test::CanvasTest, public ::testing::WithParamInterface<BadFile> {
protected:
    const QString projectPath = folder.path(QStringLiteral("project.json"));
    const QUrl project = QUrl::fromLocalFile(projectPath);

    void leave(const QByteArray& bytes) {
        QDir(folder.path()).mkpath(QStringLiteral("data/ORVEX"));
        folder.write(QStringLiteral("data/ORVEX/roll-layout.json"), bytes);
    }

    void startOverIt() {
        leave(GetParam().bytes);
        start();
    }

    void expectUntouched() const { EXPECT_EQ(TemporaryFolder::read(autosavePath), GetParam().bytes); }

    /// Edits of all kinds.
    void edit() {
        place({artwork(), artwork()});
        model->rotateSelectedArtwork();
        model->setRollGap(1.0);
        model->beginArrangeGesture();
        model->dragArtwork(idOf(0), 30.0, 0.0);
        model->endArrangeGesture();
        model->nudgeSelectedArtwork(RollNudgeDirection::right, false);
        model->setTab(1);
        model->selectArtwork(idOf(1));
        model->undoRollEdit();
        model->changeRollWidth(40.0);
        settle();
    }
};

TEST_P(UnreadableLayout, SwitchesAutosaveOffAndIsToldOnce) {
    startOverIt();
    EXPECT_EQ(model->rollSaveMessage(), notRead);
    ASSERT_TRUE(model->errorMessage());
    EXPECT_TRUE(model->errorMessage()->contains(QString::fromUtf8(GetParam().words)))
        << model->errorMessage()->toStdString();
    EXPECT_EQ(SessionBackdoor(*model).rollDocumentURL(), std::nullopt);
    EXPECT_EQ(workspace(), RollWorkspaceFile()) << "the canvas is empty";
}

TEST_P(UnreadableLayout, KeepsItsBytesWhateverIsEdited) {
    startOverIt();
    edit();
    EXPECT_GE(undoSteps(), 3);
    expectUntouched();
    EXPECT_EQ(model->rollSaveMessage(), notRead);
    model.reset();
    expectUntouched();
}

TEST_P(UnreadableLayout, KeepsItsBytesWhenTheLayoutIsSavedElsewhereWhichIsSavedFromThenOn) {
    startOverIt();
    edit();
    services.chosenPlaces.push_back(project);
    model->saveRollProject();
    EXPECT_EQ(model->rollSaveMessage(), QStringLiteral("Layout autosaved"));
    EXPECT_EQ(workspaceIn(projectPath), workspace());
    model->setRollGap(7.0);
    EXPECT_EQ(workspaceIn(projectPath).gapInches, 7.0);
    expectUntouched();
}

TEST_P(UnreadableLayout, KeepsItsBytesWhenALayoutIsOpenedWhichIsSavedFromThenOn) {
    startOverIt();
    folder.write(QStringLiteral("project.json"), layoutFile);
    model->openLayoutFile(project);
    settle();
    EXPECT_EQ(model->rollSaveMessage(), QStringLiteral("Layout autosaved"));
    model->setRollGap(7.0);
    EXPECT_EQ(workspaceIn(projectPath), workspace());
    expectUntouched();
}

TEST_P(UnreadableLayout, CanBeReplacedIfTheUserSaysSo) {
    startOverIt();
    edit();
    services.chosenPlaces.push_back(QUrl::fromLocalFile(autosavePath));
    model->saveRollProject();
    EXPECT_EQ(autosaved(), workspace());
    const RollWorkspaceFile saved = workspace();
    start();
    EXPECT_EQ(workspace(), saved);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
}

TEST_P(UnreadableLayout, CannotBeOpenedAndChangesNothing) {
    startWith(1);
    model->setTab(2);
    model->setDriverColorCorrectionDisabledConfirmed(true);
    folder.write(QStringLiteral("project.json"), GetParam().bytes);
    forgetAutosave();
    test::CanvasState expected = state();
    model->openLayoutFile(project);
    settle();
    ASSERT_TRUE(model->errorMessage());
    EXPECT_TRUE(model->errorMessage()->contains(QString::fromUtf8(GetParam().words)));
    expected.errorMessage = model->errorMessage();
    EXPECT_EQ(state(), expected);
    EXPECT_TRUE(model->presetForm().colorWorkflow.driverColorCorrectionDisabledConfirmed);
    EXPECT_EQ(TemporaryFolder::read(projectPath), GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(Files, UnreadableLayout, ::testing::ValuesIn(badFiles()),
                         [](const auto& file) { return std::string(file.param.name); });

TEST(UnreadableLayoutCases, AreBadForWhatTheyChange) {
    const RollWorkspaceFile file = RollWorkspaceFile::decode(layoutFile);
    EXPECT_NO_THROW(file.validate());
    EXPECT_EQ(file.layout.items.size(), 1);
}

// Places that cannot be read or written

/// An autosave place with something in the way.
class BadPlace : public test::CanvasTest {
protected:
    const QString folderPath = stored(QString()).chopped(1);

    void makeFolder() const { QDir().mkpath(folderPath); }

    /// Starts a session, which must go on without autosave.
    void expectNoAutosave() {
        start();
        EXPECT_EQ(model->rollSaveMessage(), notRead);
        EXPECT_TRUE(model->errorMessage());
        EXPECT_EQ(SessionBackdoor(*model).rollDocumentURL(), std::nullopt);
        place({artwork()});
        model->rotateSelectedArtwork();
        EXPECT_EQ(undoSteps(), 1);
        EXPECT_EQ(model->rollSaveMessage(), notRead);
        const QString project = folder.path(QStringLiteral("project.json"));
        services.chosenPlaces.push_back(QUrl::fromLocalFile(project));
        model->saveRollProject();
        model->rotateSelectedArtwork();
        EXPECT_EQ(workspaceIn(project), workspace());
    }
};

TEST_F(BadPlace, IsAFolderByTheNameOfTheFile) {
    QDir().mkpath(autosavePath + QStringLiteral("/inner"));
    expectNoAutosave();
    EXPECT_TRUE(QFileInfo(autosavePath + QStringLiteral("/inner")).isDir());
}

TEST_F(BadPlace, IsALinkThatLeadsNowhere) {
    makeFolder();
    const QByteArray target = folder.path(QStringLiteral("unplugged/layout.json")).toUtf8();
    ASSERT_EQ(::symlink(target.constData(), autosavePath.toUtf8().constData()), 0);
    expectNoAutosave();
    EXPECT_EQ(QFileInfo(autosavePath).symLinkTarget().toUtf8(), target);
    EXPECT_FALSE(QFileInfo::exists(QString::fromUtf8(target)));
}

TEST_F(BadPlace, IsALinkToItself) {
    makeFolder();
    const QByteArray path = autosavePath.toUtf8();
    ASSERT_EQ(::symlink(path.constData(), path.constData()), 0);
    expectNoAutosave();
    EXPECT_TRUE(QFileInfo(autosavePath).isSymLink());
}

TEST_F(BadPlace, IsAPipeForWhichNobodyWaits) {
    makeFolder();
    ASSERT_EQ(::mkfifo(autosavePath.toUtf8().constData(), 0600), 0);
    expectNoAutosave();
}

TEST_F(BadPlace, IsAFileInPlaceOfTheApplicationFolder) {
    folder.write(QStringLiteral("data/ORVEX"), "kept");
    expectNoAutosave();
    EXPECT_EQ(TemporaryFolder::read(folderPath), "kept");
}

TEST_F(BadPlace, IsAFileInPlaceOfTheDataFolder) {
    QDir(folder.path()).rmdir(QStringLiteral("data"));
    folder.write(QStringLiteral("data"), "kept");
    expectNoAutosave();
    EXPECT_EQ(TemporaryFolder::read(folder.path(QStringLiteral("data"))), "kept");
}

TEST_F(BadPlace, IsAHomeWithoutADataFolderThatCannotBeMade) {
    qunsetenv("XDG_DATA_HOME");
    folder.write(QStringLiteral("home/.local"), "kept");
    expectNoAutosave();
    EXPECT_EQ(TemporaryFolder::read(folder.path(QStringLiteral("home/.local"))), "kept");
}

TEST_F(BadPlace, IsAFileLargerThanAnyLayout) {
    makeFolder();
    folder.write(QStringLiteral("data/ORVEX/roll-layout.json"), {});
    constexpr off_t tooLarge = (off_t(1) << 28) + 1;
    ASSERT_EQ(::truncate(autosavePath.toUtf8().constData(), tooLarge), 0);
    expectNoAutosave();
    EXPECT_EQ(model->errorMessage(), autosavePath + QStringLiteral(": File too large"));
    EXPECT_EQ(QFileInfo(autosavePath).size(), tooLarge);
}

TEST_F(BadPlace, ComesUpWhileTheSessionRunsAndGoesAgain) {
    startWith(1);
    const QString aside = folder.path(QStringLiteral("aside"));
    ASSERT_TRUE(QDir().rename(folderPath, aside));
    folder.write(QStringLiteral("data/ORVEX"), "in the way");
    model->rotateSelectedArtwork();
    EXPECT_EQ(undoSteps(), 1);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_EQ(model->rollSaveMessage(), QStringLiteral("Layout not saved: %1: Not a directory").arg(autosavePath));
    QFile::remove(folderPath);
    ASSERT_TRUE(QDir().rename(aside, folderPath));
    model->rotateSelectedArtwork();
    EXPECT_EQ(autosaved(), workspace());
}

TEST_F(BadPlace, IsToldInChinese) {
    makeFolder();
    folder.write(QStringLiteral("data/ORVEX/roll-layout.json"), "{");
    const test::InChinese chinese;
    start();
    EXPECT_EQ(model->rollSaveMessage(), QStringLiteral("无法读取自动保存的排版。原文件已保留，请将排版另存为新文件。"));
    EXPECT_TRUE(model->errorMessage()->contains(QStringLiteral("内容不是有效的 JSON")));
}

} // namespace
} // namespace orvex
