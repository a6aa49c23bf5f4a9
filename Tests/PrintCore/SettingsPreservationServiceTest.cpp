#include "SettingsPreservationService.h"

#include "Files/Paths.h"
#include "InChinese.h"
#include "ProtectedFolder.h"

#include <gtest/gtest.h>

namespace orvex {

namespace {

using test::directory;
using test::entryOf;
using test::missing;
using test::ProtectedFolder;
using test::regularFile;
using test::symbolicLink;
using test::unreadable;
using test::unsupported;

const QString a = QStringLiteral("/p/a");
const QString b = QStringLiteral("/p/b");
const QString c = QStringLiteral("/p/c");
const QString versionSentence = QStringLiteral("Unsupported settings snapshot version");

ProtectedSettingsSnapshot snapshotOf(const QList<ProtectedSettingsFile>& files) {
    return {.timestamp = {700000000.0}, .rootPaths = {QStringLiteral("/p")}, .files = files};
}

SettingsPreservationComparison comparisonOf(const QList<ProtectedSettingsFile>& before,
                                            const QList<ProtectedSettingsFile>& after) {
    return SettingsPreservationService::compare(snapshotOf(before), snapshotOf(after));
}

ProtectedSettingsChange change(const std::optional<ProtectedSettingsFile>& before,
                               const std::optional<ProtectedSettingsFile>& after) {
    return {.path = before ? before->path : after->path, .before = before, .after = after};
}

QStringList pathsOf(const QList<ProtectedSettingsFile>& files) {
    QStringList paths;
    for (const ProtectedSettingsFile& file : files) {
        paths.append(file.path);
    }
    return paths;
}

} // namespace

TEST(SettingsComparison, FindsNoChangeInWhatIsTheSame) {
    const QList<ProtectedSettingsFile> files{directory(a), missing(b), regularFile(c, "content")};
    EXPECT_EQ(comparisonOf(files, files), SettingsPreservationComparison());
    EXPECT_TRUE(comparisonOf(files, files).isUnchanged());
    EXPECT_TRUE(comparisonOf({}, {}).isUnchanged());
}

TEST(SettingsComparison, LooksNeitherAtTheTimeNorAtTheRoots) {
    ProtectedSettingsSnapshot before = snapshotOf({directory(a)});
    ProtectedSettingsSnapshot after = before;
    after.timestamp = {0.0};
    after.rootPaths = {a, b};
    EXPECT_TRUE(SettingsPreservationService::compare(before, after).isUnchanged());
}

TEST(SettingsComparison, KeepsBothSidesOfAChange) {
    const auto old = regularFile(a, "old");
    const auto fresh = regularFile(a, "new");
    const auto comparison = comparisonOf({old}, {fresh});
    EXPECT_EQ(comparison.changes, QList{change(old, fresh)});
    EXPECT_EQ(comparison.unverifiablePaths, QStringList()) << "a change can be verified";
    EXPECT_FALSE(comparison.isUnchanged());
}

TEST(SettingsComparison, FindsWhatIsNewAndWhatIsGone) {
    const auto comparison = comparisonOf({directory(a), missing(b)}, {missing(b), regularFile(c, "new")});
    EXPECT_EQ(comparison.changes,
              (QList{change(directory(a), std::nullopt), change(std::nullopt, regularFile(c, "new"))}));
    EXPECT_EQ(comparison.unverifiablePaths, QStringList());
}

TEST(SettingsComparison, TakesAnotherStatusForAChange) {
    const auto file = regularFile(a, "content");
    for (const auto& other : {missing(a), directory(a), unreadable(a, QStringLiteral("why")), unsupported(a)}) {
        EXPECT_EQ(comparisonOf({file}, {other}).changes, QList{change(file, other)});
        EXPECT_EQ(comparisonOf({other}, {file}).changes, QList{change(other, file)});
    }
}

TEST(SettingsComparison, TakesAHashThatCameOrWentForAChange) {
    const auto file = regularFile(a, "content");
    auto bare = file;
    bare.sha256.reset();
    EXPECT_EQ(comparisonOf({file}, {bare}).changes, QList{change(file, bare)});
    EXPECT_EQ(comparisonOf({bare}, {file}).changes, QList{change(bare, file)});
    EXPECT_EQ(comparisonOf({bare}, {bare}).changes, QList<ProtectedSettingsChange>());
    EXPECT_EQ(comparisonOf({file}, {bare}).unverifiablePaths, QStringList{a}) << "a file without a hash";
}

TEST(SettingsComparison, DoesNotCompareWhatIsSaidToThePerson) {
    auto file = regularFile(a, "content");
    const auto other = file;
    file.diagnostic = QStringLiteral("why");
    EXPECT_TRUE(comparisonOf({file}, {other}).isUnchanged());
    const auto comparison =
        comparisonOf({unreadable(b, QStringLiteral("one"))}, {unreadable(b, QStringLiteral("another"))});
    EXPECT_EQ(comparison.changes, QList<ProtectedSettingsChange>());
    EXPECT_EQ(comparison.unverifiablePaths, QStringList{b});
}

TEST(SettingsComparison, CannotVerifyALinkWithTheSameTarget) {
    const auto comparison = comparisonOf({symbolicLink(a, "there")}, {symbolicLink(a, "there")});
    EXPECT_EQ(comparison.changes, QList<ProtectedSettingsChange>());
    EXPECT_EQ(comparison.unverifiablePaths, QStringList{a});
    EXPECT_FALSE(comparison.isUnchanged());
}

TEST(SettingsComparison, TakesALinkWithAnotherTargetForBoth) {
    const auto comparison = comparisonOf({symbolicLink(a, "there")}, {symbolicLink(a, "elsewhere")});
    EXPECT_EQ(comparison.changes, QList{change(symbolicLink(a, "there"), symbolicLink(a, "elsewhere"))});
    EXPECT_EQ(comparison.unverifiablePaths, QStringList{a});
}

TEST(SettingsComparison, NamesAPathOnceIfEitherSideCannotBeVerified) {
    const auto known = regularFile(a, "content");
    const auto unknown = unreadable(a, QStringLiteral("why"));
    EXPECT_EQ(comparisonOf({known}, {unknown}).unverifiablePaths, QStringList{a});
    EXPECT_EQ(comparisonOf({unknown}, {known}).unverifiablePaths, QStringList{a});
    EXPECT_EQ(comparisonOf({unknown}, {unknown}).unverifiablePaths, QStringList{a});
    EXPECT_EQ(comparisonOf({unknown}, {}).unverifiablePaths, QStringList{a}) << "the side that is there counts";
    EXPECT_EQ(comparisonOf({}, {unsupported(a)}).unverifiablePaths, QStringList{a});
}

TEST(SettingsComparison, NeverCallsSnapshotsOfAnotherVersionUnchanged) {
    const auto current = snapshotOf({directory(a)});
    auto other = current;
    for (const qint64 version : {0, 2, -1}) {
        other.schemaVersion = version;
        for (const auto& comparison : {SettingsPreservationService::compare(other, current),
                                       SettingsPreservationService::compare(current, other),
                                       SettingsPreservationService::compare(other, other)}) {
            EXPECT_EQ(comparison.changes, QList<ProtectedSettingsChange>());
            EXPECT_EQ(comparison.unverifiablePaths, QStringList{versionSentence});
            EXPECT_FALSE(comparison.isUnchanged());
        }
    }
}

TEST(SettingsComparison, SortsTheSentenceOnTheVersionAmongThePaths) {
    auto before = snapshotOf({unsupported(QStringLiteral("/z")), unsupported(QStringLiteral("~"))});
    before.schemaVersion = 2;
    EXPECT_EQ(SettingsPreservationService::compare(before, before).unverifiablePaths,
              (QStringList{QStringLiteral("/z"), versionSentence, QStringLiteral("~")}));
    const test::InChinese inChinese;
    EXPECT_EQ(SettingsPreservationService::compare(before, before).unverifiablePaths,
              (QStringList{QStringLiteral("/z"), QStringLiteral("~"), QString::fromUtf8("不支持的设置快照版本")}));
}

TEST(SettingsComparison, SortsByUnicodeScalarsWhateverTheOrderOfTheFiles) {
    const QStringList paths{QStringLiteral("/p/B"),   QStringLiteral("/p/a"),     QStringLiteral("/p/a!"),
                            QStringLiteral("/p/a/b"), QString::fromUtf8("/p/卷"), QString::fromUtf8("/p/（"),
                            QString::fromUtf8("/p/😀")};
    QList<ProtectedSettingsFile> files;
    for (const QString& path : paths) {
        files.prepend(unsupported(path));
    }
    const auto comparison = comparisonOf(files, {});
    EXPECT_EQ(comparison.unverifiablePaths, paths);
    QStringList changed;
    for (const ProtectedSettingsChange& each : comparison.changes) {
        changed.append(each.path);
    }
    EXPECT_EQ(changed, paths);
}

// What a capture is asked for

TEST(SettingsRoots, AreTheDistinctStandardisedPathsInOrder) {
    const ProtectedFolder folder;
    const QString file = folder.write("b/c", "content");
    const QString root = folder.path();
    const auto snapshot = test::capture({root + QStringLiteral("/b/./..//b/c/"), root + QStringLiteral("/z"), file,
                                         root + QStringLiteral("//a/"), root + QStringLiteral("/b/x/../c")});
    EXPECT_EQ(snapshot.schemaVersion, 1);
    EXPECT_EQ(snapshot.rootPaths, (QStringList{folder.path("a"), file, folder.path("z")}));
    EXPECT_EQ(snapshot.files,
              (QList{missing(folder.path("a")), regularFile(file, "content"), missing(folder.path("z"))}));
}

TEST(SettingsRoots, AreStandardisedWithoutALookAtLinks) {
    const ProtectedFolder folder;
    folder.makeFolder("far/below");
    folder.write("far/file", "far");
    folder.link("far/below", "link");
    const auto snapshot = test::capture({folder.path("link/../file"), folder.path("link/")});
    EXPECT_EQ(snapshot.files, (QList{missing(folder.path("file")), symbolicLink(folder.path("link"), "far/below")}));
}

TEST(SettingsRoots, MayLieInsideOneAnother) {
    const ProtectedFolder folder;
    folder.write("a/b/c", "content");
    const QList<ProtectedSettingsFile> files{directory(folder.path("a")), directory(folder.path("a/b")),
                                             regularFile(folder.path("a/b/c"), "content")};
    const QStringList roots{folder.path("a"), folder.path("a/b"), folder.path("a/b/c")};
    for (const QStringList& order : {roots, QStringList(roots.rbegin(), roots.rend())}) {
        EXPECT_EQ(test::capture(order).files, files);
        EXPECT_EQ(test::capture(order).rootPaths, roots);
    }
}

TEST(SettingsRoots, AreSortedByUnicodeScalars) {
    const QStringList paths{QStringLiteral("/none/B"),   QStringLiteral("/none/a"),     QStringLiteral("/none/a!"),
                            QStringLiteral("/none/a/b"), QString::fromUtf8("/none/（"), QString::fromUtf8("/none/😀")};
    const auto snapshot = test::capture(QStringList(paths.rbegin(), paths.rend()));
    EXPECT_EQ(snapshot.rootPaths, paths);
    EXPECT_EQ(pathsOf(snapshot.files), paths);
}

TEST(SettingsRoots, MayBeNone) {
    const auto snapshot = test::capture({});
    EXPECT_EQ(snapshot.rootPaths, QStringList());
    EXPECT_EQ(snapshot.files, QList<ProtectedSettingsFile>());
}

TEST(SettingsRoots, ThatAreNoFileLocationsAreUnreadable) {
    const QString sentence = QStringLiteral("Only local file paths are supported.");
    const auto snapshot = SettingsPreservationService::capture(
        {QUrl(QStringLiteral("https://localhost/a/./b//c/")), QUrl(QStringLiteral("/etc/%E5%8D%B7"))});
    EXPECT_EQ(snapshot.rootPaths, (QStringList{QStringLiteral("/a/b/c"), QString::fromUtf8("/etc/卷")}));
    EXPECT_EQ(snapshot.files, (QList{unreadable(QStringLiteral("/a/b/c"), sentence),
                                     unreadable(QString::fromUtf8("/etc/卷"), sentence)}));
    const test::InChinese inChinese;
    EXPECT_EQ(SettingsPreservationService::capture({QUrl(QStringLiteral("https://localhost/a"))}).files,
              QList{unreadable(QStringLiteral("/a"), QString::fromUtf8("只支持本机文件路径。"))});
}

TEST(SettingsRoots, OfTheSamePathShareOneEntryAndTheLaterOneCounts) {
    const ProtectedFolder folder;
    const QString file = folder.write("file", "content");
    const QUrl local = QUrl::fromLocalFile(file);
    QUrl remote = local;
    remote.setScheme(QStringLiteral("https"));
    remote.setHost(QStringLiteral("localhost"));
    const auto sentence = QStringLiteral("Only local file paths are supported.");
    EXPECT_EQ(SettingsPreservationService::capture({local, remote}).files, QList{unreadable(file, sentence)});
    EXPECT_EQ(SettingsPreservationService::capture({remote, local}).files, QList{regularFile(file, "content")});
    EXPECT_EQ(SettingsPreservationService::capture({remote, local}).rootPaths, QStringList{file});
}

TEST(SettingsRoots, AreReadFromUrlsWithAnyCharacter) {
    const ProtectedFolder folder;
    const QString file = folder.write("a b%20#?&\"'\\\n卷😀", "content");
    const auto snapshot = test::capture({file});
    EXPECT_EQ(snapshot.rootPaths, QStringList{file});
    EXPECT_EQ(snapshot.files, QList{regularFile(file, "content")});
}

TEST(SettingsCycle, FindsWhatHappenedSinceTheBaseline) {
    const ProtectedFolder folder;
    folder.write("kept", "kept");
    folder.write("changed", "old");
    folder.write("gone", "gone");
    folder.makeFolder("turned");
    folder.link("kept", "link");
    const auto baseline = test::capture({folder.path()});
    EXPECT_TRUE(SettingsPreservationService::compare(baseline, baseline).changes.isEmpty());

    folder.write("changed", "new");
    ASSERT_TRUE(QFile::remove(folder.path("gone")));
    ASSERT_TRUE(QDir().rmdir(folder.path("turned")));
    folder.write("turned", "now a file");
    folder.write("new/inner", "new");
    const auto comparison = SettingsPreservationService::compare(baseline, test::capture({folder.path()}));
    EXPECT_EQ(comparison.changes,
              (QList{change(regularFile(folder.path("changed"), "old"), regularFile(folder.path("changed"), "new")),
                     change(regularFile(folder.path("gone"), "gone"), std::nullopt),
                     change(std::nullopt, directory(folder.path("new"))),
                     change(std::nullopt, regularFile(folder.path("new/inner"), "new")),
                     change(directory(folder.path("turned")), regularFile(folder.path("turned"), "now a file"))}));
    EXPECT_EQ(comparison.unverifiablePaths, QStringList{folder.path("link")});
}

TEST(SettingsCycle, FindsARootThatIsGone) {
    const ProtectedFolder folder;
    const QString file = folder.write("file", "content");
    const auto baseline = test::capture({file});
    ASSERT_TRUE(QFile::remove(file));
    const auto comparison = SettingsPreservationService::compare(baseline, test::capture({file}));
    EXPECT_EQ(comparison.changes, QList{change(regularFile(file, "content"), missing(file))});
    EXPECT_EQ(comparison.unverifiablePaths, QStringList());
}

TEST(SettingsCycle, IsUnchangedByATouchOrAnEqualFile) {
    const ProtectedFolder folder;
    const QString file = folder.write("file", "content");
    const auto baseline = test::capture({folder.path()});
    ASSERT_TRUE(QFile::remove(file));
    folder.write("file", "content");
    EXPECT_TRUE(SettingsPreservationService::compare(baseline, test::capture({folder.path()})).isUnchanged())
        << "only the content speaks for a file";
}

} // namespace orvex
