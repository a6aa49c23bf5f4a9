#include "ProtectedSettingsBaseline.h"

#include "ChildProcess.h"
#include "Files/FileSystemError.h"
#include "InChinese.h"
#include "Json/JsonError.h"
#include "ProtectedFolder.h"

#include <QJsonArray>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <limits>

namespace orvex {

namespace {

using platform::FileSystemError;
using platform::JsonError;
using test::becomeOrdinaryUser;
using test::directory;
using test::inChildProcess;
using test::missing;
using test::ProtectedFolder;
using test::regularFile;
using test::symbolicLink;
using test::TemporaryFolder;
using test::unreadable;
using test::unsupported;

const QString sentence = QStringLiteral("The settings protection baseline is invalid or its version is unsupported. "
                                        "The original file was kept.");

QString q(const char* text) {
    return QString::fromUtf8(text);
}

/// A baseline with every status, two roots and one file for each kind of place.
ProtectedSettingsSnapshot goodSnapshot() {
    return {.timestamp = {795000000.5},
            .rootPaths = {q("/etc/ppd"), q("/gone")},
            .files = {directory(q("/etc/ppd")), symbolicLink(q("/etc/ppd/link"), "target"),
                      unsupported(q("/etc/ppd/pipe")), unreadable(q("/etc/ppd/secret"), q("why")),
                      regularFile(q("/etc/ppd/w.ppd"), "content"), missing(q("/gone"))}};
}

bool isValid(const ProtectedSettingsSnapshot& snapshot) {
    try {
        ProtectedSettingsBaseline::validate(snapshot);
        return true;
    } catch (const InvalidBaselineError& error) {
        EXPECT_EQ(error.message(), sentence);
        return false;
    }
}

/// Whether a snapshot of these roots and folders is valid.
bool isValid(const QStringList& roots, const QStringList& paths) {
    ProtectedSettingsSnapshot snapshot{.rootPaths = roots};
    for (const QString& path : paths) {
        snapshot.files.append(directory(path));
    }
    return isValid(snapshot);
}

enum class Outcome { done, absent, invalid, notJson, systemFailure };

void PrintTo(Outcome outcome, std::ostream* out) {
    constexpr const char* names[] = {"done", "absent", "invalid", "not JSON", "failure of the system"};
    *out << names[static_cast<int>(outcome)];
}

Outcome outcomeOf(const std::function<Outcome()>& call) {
    try {
        return call();
    } catch (const InvalidBaselineError&) {
        return Outcome::invalid;
    } catch (const JsonError&) {
        return Outcome::notJson;
    } catch (const FileSystemError&) {
        return Outcome::systemFailure;
    }
}

class BaselineTest : public ::testing::Test {
protected:
    Outcome loading() const {
        return outcomeOf([&] { return store_.load() ? Outcome::done : Outcome::absent; });
    }

    Outcome saving(const ProtectedSettingsSnapshot& snapshot = goodSnapshot()) const {
        return outcomeOf([&] {
            store_.save(snapshot);
            return Outcome::done;
        });
    }

    /// A file of these bytes can neither be loaded nor saved over, and stays.
    void expectRefused(const QByteArray& bytes, Outcome outcome) const {
        SCOPED_TRACE(bytes.toStdString());
        folder_.write(name_, bytes);
        EXPECT_EQ(loading(), outcome);
        EXPECT_EQ(saving(), outcome);
        EXPECT_EQ(TemporaryFolder::read(path_), bytes);
        EXPECT_EQ(QDir(folder_.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                  QStringList{q(name_)});
    }

    void expectRefused(const QJsonValue& json, Outcome outcome) const {
        expectRefused(QJsonDocument(json.toObject()).toJson(), outcome);
    }

    void expectAccepted(const QJsonValue& json) const {
        const QByteArray bytes = QJsonDocument(json.toObject()).toJson();
        SCOPED_TRACE(bytes.toStdString());
        folder_.write(name_, bytes);
        EXPECT_EQ(loading(), Outcome::done);
        EXPECT_EQ(saving(), Outcome::done);
        EXPECT_EQ(store_.load(), goodSnapshot());
    }

    static constexpr const char* name_ = "settings-preservation-baseline.json";

    ProtectedFolder folder_;
    ProtectedSettingsBaselineStore store_{QUrl::fromLocalFile(folder_.path())};
    QString path_ = folder_.path(name_);
};

/// The good baseline with another value at one place; an undefined one removes the key.
QJsonObject withValue(const QString& key, const QJsonValue& value) {
    QJsonObject json = goodSnapshot().toJson();
    value.isUndefined() ? json.remove(key) : void(json.insert(key, value));
    return json;
}

QJsonObject withFileValue(qsizetype index, const QString& key, const QJsonValue& value) {
    QJsonObject json = goodSnapshot().toJson();
    QJsonArray files = json[q("files")].toArray();
    QJsonObject file = files[index].toObject();
    value.isUndefined() ? file.remove(key) : void(file.insert(key, value));
    files[index] = file;
    json.insert(q("files"), files);
    return json;
}

/// A value of each type that JSON has.
const QJsonArray& oneOfEachType() {
    static const QJsonArray values{QJsonValue(), true, 1, q("text"), QJsonArray(), QJsonObject()};
    return values;
}

constexpr qsizetype linkIndex = 1;
constexpr qsizetype unreadableIndex = 3;
constexpr qsizetype fileIndex = 4;

} // namespace

// The rules

TEST(BaselineRules, AcceptWhatACaptureMakes) {
    const ProtectedFolder folder;
    folder.write("a/b", "content");
    folder.link("a", "link");
    EXPECT_TRUE(isValid(test::capture({folder.path(), folder.path("a"), folder.path("none")})));
    EXPECT_TRUE(isValid(test::capture({})));
    EXPECT_TRUE(isValid(goodSnapshot()));
}

TEST(BaselineRules, AcceptAMissingRoot) {
    const auto snapshot = test::capture({q("/none/of/these")});
    EXPECT_EQ(snapshot.files, QList{missing(q("/none/of/these"))});
    EXPECT_TRUE(isValid(snapshot));
}

TEST(BaselineRules, KnowOneVersionAlone) {
    ProtectedSettingsSnapshot snapshot = goodSnapshot();
    for (const qint64 version : {qint64{0}, qint64{2}, qint64{-1}, std::numeric_limits<qint64>::max()}) {
        snapshot.schemaVersion = version;
        EXPECT_FALSE(isValid(snapshot)) << version;
    }
}

TEST(BaselineRules, NeedAFiniteTime) {
    using Limits = std::numeric_limits<double>;
    ProtectedSettingsSnapshot snapshot = goodSnapshot();
    for (const double seconds : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity()}) {
        snapshot.timestamp = {seconds};
        EXPECT_FALSE(isValid(snapshot)) << seconds;
    }
    for (const double seconds : {0.0, -0.0, -1.5, Limits::max(), Limits::lowest(), Limits::denorm_min()}) {
        snapshot.timestamp = {seconds};
        EXPECT_TRUE(isValid(snapshot)) << seconds;
    }
}

TEST(BaselineRules, RefuseWhatIsThereTwice) {
    EXPECT_FALSE(isValid({q("/a")}, {q("/a"), q("/a")}));
    EXPECT_FALSE(isValid({q("/a")}, {q("/a"), q("/a/b"), q("/a"), q("/a/c")}));
    EXPECT_FALSE(isValid({q("/a"), q("/a")}, {q("/a")}));
    EXPECT_TRUE(isValid({q("/a"), q("/A")}, {q("/a"), q("/A")})) << "case makes a difference";
    EXPECT_TRUE(isValid({q("/é"), q("/e\u0301")}, {q("/é"), q("/e\u0301")})) << "these are two files";
}

TEST(BaselineRules, NeedAbsolutePaths) {
    EXPECT_FALSE(isValid({q("a")}, {q("a")}));
    EXPECT_FALSE(isValid({q("")}, {q("")}));
    EXPECT_FALSE(isValid({q("")}, {q("/a")}));
    EXPECT_FALSE(isValid({q("~/a")}, {q("~/a")}));
    EXPECT_FALSE(isValid({q("/a"), q("b")}, {q("/a"), q("b")}));
    EXPECT_FALSE(isValid({q("/a")}, {q("/a"), q("a")}));
    EXPECT_FALSE(isValid({q("/a")}, {q("/a"), q("")}));
    EXPECT_FALSE(isValid({q("/")}, {q("/"), q("a")})) << "under every root, yet not absolute";
}

TEST(BaselineRules, NeedEveryPathUnderARoot) {
    EXPECT_TRUE(isValid({q("/a")}, {q("/a"), q("/a/b"), q("/a/b/c")}));
    EXPECT_TRUE(isValid({q("/a"), q("/b")}, {q("/a"), q("/b"), q("/b/c")}));
    EXPECT_TRUE(isValid({q("/a/b"), q("/a")}, {q("/a"), q("/a/b"), q("/a/c")}));
    EXPECT_FALSE(isValid({q("/a")}, {q("/a"), q("/b")}));
    EXPECT_FALSE(isValid({q("/a/b")}, {q("/a/b"), q("/a")})) << "above it";
    EXPECT_FALSE(isValid({q("/a")}, {q("/a"), q("/")}));
}

TEST(BaselineRules, DoNotTakeASiblingWithALongerNameForAChild) {
    EXPECT_FALSE(isValid({q("/a")}, {q("/a"), q("/ab")}));
    EXPECT_FALSE(isValid({q("/a")}, {q("/a"), q("/ab/c")}));
    EXPECT_FALSE(isValid({q("/a")}, {q("/a"), q("/a.d/c")}));
    EXPECT_FALSE(isValid({q("/a")}, {q("/a"), q("/a") + QChar(u'\0')}));
}

TEST(BaselineRules, TakeEverythingForAChildOfTheWholeFileSystem) {
    EXPECT_TRUE(isValid({q("/")}, {q("/"), q("/a"), q("/a/b")}));
    EXPECT_TRUE(isValid({q("/"), q("/x")}, {q("/"), q("/a"), q("/x")}));
}

TEST(BaselineRules, GoByTheTextOfARoot) {
    EXPECT_FALSE(isValid({q("/a/")}, {q("/a/"), q("/a/b")})) << "not the root with a slash behind it";
    EXPECT_TRUE(isValid({q("/a/")}, {q("/a/"), q("/a//b")}));
    EXPECT_TRUE(isValid({q("/a")}, {q("/a"), q("/a/")}));
}

TEST(BaselineRules, NeedAnEntryForEachRoot) {
    EXPECT_FALSE(isValid({q("/a")}, {}));
    EXPECT_FALSE(isValid({q("/a")}, {q("/a/b")}));
    EXPECT_FALSE(isValid({q("/a"), q("/a/b")}, {q("/a"), q("/a/c")}));
    EXPECT_FALSE(isValid({}, {q("/a")})) << "under no root";
    EXPECT_TRUE(isValid({}, QStringList()));
}

TEST(BaselineRules, NeedAHashOfFilesAndLinks) {
    const QString digits = q("0123456789abcdef").repeated(4);
    const QList<std::optional<QString>> bad{std::nullopt,
                                            QString(),
                                            digits.chopped(1),
                                            digits + u'0',
                                            digits.toUpper(),
                                            digits.chopped(1) + u'F',
                                            digits.chopped(1) + u'g',
                                            digits.chopped(1) + u' ',
                                            digits.chopped(1) + u'/',
                                            digits.chopped(1) + u':',
                                            digits.chopped(1) + u'`',
                                            digits.chopped(1) + QChar(u'\0'),
                                            digits.chopped(1) + QChar(0x0665),  // an Arabic five
                                            digits.chopped(1) + QChar(0xFF15)}; // a wide five
    using enum ProtectedSettingsFileStatus;
    for (const auto status : {regularFile, symbolicLink, directory, missing, unreadable, unsupported}) {
        ProtectedSettingsSnapshot snapshot{.rootPaths = {q("/a")}};
        snapshot.files = {{.path = q("/a"), .status = status, .sha256 = digits}};
        EXPECT_TRUE(isValid(snapshot));
        const bool isExamined = status == regularFile || status == symbolicLink;
        for (const auto& hash : bad) {
            snapshot.files[0].sha256 = hash;
            EXPECT_EQ(isValid(snapshot), !isExamined) << hash.value_or(q("none")).toStdString();
        }
    }
}

TEST(BaselineRules, DoNotMindTheOrder) {
    ProtectedSettingsSnapshot snapshot = goodSnapshot();
    std::reverse(snapshot.files.begin(), snapshot.files.end());
    std::reverse(snapshot.rootPaths.begin(), snapshot.rootPaths.end());
    EXPECT_TRUE(isValid(snapshot));
}

TEST(BaselineRules, FailWithOneErrorThatSaysThatTheFileIsKept) {
    EXPECT_EQ(InvalidBaselineError::domain(), q("Orvex.SettingsPreservation"));
    EXPECT_EQ(InvalidBaselineError::code(), 1);
    EXPECT_EQ(InvalidBaselineError().message(), sentence);
    const test::InChinese inChinese;
    EXPECT_EQ(InvalidBaselineError().message(), q("设置基线无效，或其版本不受支持。原文件已保留。"));
}

// The file

TEST_F(BaselineTest, IsAbsentAtFirst) {
    EXPECT_EQ(store_.fileURL(), QUrl::fromLocalFile(path_));
    EXPECT_EQ(store_.load(), std::nullopt);
    EXPECT_FALSE(QFile::exists(path_)) << "loading makes no file";
}

TEST_F(BaselineTest, ComesBackAsItWasSaved) {
    store_.save(goodSnapshot());
    EXPECT_EQ(store_.load(), goodSnapshot());
    ProtectedSettingsSnapshot other = goodSnapshot();
    other.timestamp = platform::Timestamp::now();
    other.files[fileIndex] = regularFile(q("/etc/ppd/卷 \"布\"\\\n\t\u0001😀"), "content");
    store_.save(other);
    EXPECT_EQ(store_.load(), other) << "a good baseline is replaced";
}

TEST_F(BaselineTest, IsPrettyJsonWithSortedKeysAndPlainSlashes) {
    ProtectedSettingsSnapshot snapshot{.timestamp = {795000000.25},
                                       .rootPaths = {q("/etc/卷"), q("/gone")},
                                       .files = {regularFile(q("/etc/卷"), "abc"),
                                                 unreadable(q("/etc/卷/x"), q("/etc/卷/x: Permission denied")),
                                                 missing(q("/gone"))}};
    store_.save(snapshot);
    EXPECT_EQ(TemporaryFolder::read(path_).toStdString(), R"({
    "files": [
        {
            "path": "/etc/卷",
            "sha256": "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad",
            "status": "regularFile"
        },
        {
            "diagnostic": "/etc/卷/x: Permission denied",
            "path": "/etc/卷/x",
            "status": "unreadable"
        },
        {
            "path": "/gone",
            "status": "missing"
        }
    ],
    "rootPaths": [
        "/etc/卷",
        "/gone"
    ],
    "schemaVersion": 1,
    "timestamp": 795000000.25
}
)");
}

TEST_F(BaselineTest, AcceptsOtherSpellingsOfTheSame) {
    store_.save(goodSnapshot());
    QByteArray bytes = TemporaryFolder::read(path_);
    bytes.replace("/etc", "\\/etc").replace("\"schemaVersion\": 1", "\"schemaVersion\": 1.0");
    folder_.write(name_, bytes);
    EXPECT_EQ(store_.load(), goodSnapshot());
    expectAccepted(withValue(q("unknown"), 5));
    expectAccepted(withFileValue(0, q("diagnostic"), QJsonValue()));
    expectAccepted(withFileValue(0, q("sha256"), QJsonValue()));
}

TEST_F(BaselineTest, IsNotSavedIfItIsInvalid) {
    ProtectedSettingsSnapshot bad = goodSnapshot();
    bad.schemaVersion = 2;
    EXPECT_EQ(saving(bad), Outcome::invalid);
    EXPECT_FALSE(QFile::exists(path_));
    store_.save(goodSnapshot());
    const QByteArray bytes = TemporaryFolder::read(path_);
    EXPECT_EQ(saving(bad), Outcome::invalid);
    bad = goodSnapshot();
    bad.timestamp = {std::numeric_limits<double>::infinity()};
    EXPECT_EQ(saving(bad), Outcome::invalid);
    EXPECT_EQ(TemporaryFolder::read(path_), bytes);
}

// Damaged files

TEST_F(BaselineTest, RefusesAFileWithoutARequiredKey) {
    const QJsonValue none(QJsonValue::Undefined);
    for (const char* key : {"files", "rootPaths", "schemaVersion", "timestamp"}) {
        expectRefused(withValue(q(key), none), Outcome::notJson);
    }
    for (qsizetype index = 0; index < goodSnapshot().files.size(); ++index) {
        expectRefused(withFileValue(index, q("path"), none), Outcome::notJson);
        expectRefused(withFileValue(index, q("status"), none), Outcome::notJson);
    }
    expectRefused(withFileValue(fileIndex, q("sha256"), none), Outcome::invalid);
    expectRefused(withFileValue(linkIndex, q("sha256"), none), Outcome::invalid);
}

TEST_F(BaselineTest, RefusesValuesOfAnotherType) {
    const std::map<QString, QJsonValue::Type> types{{q("files"), QJsonValue::Array},
                                                    {q("rootPaths"), QJsonValue::Array},
                                                    {q("schemaVersion"), QJsonValue::Double},
                                                    {q("timestamp"), QJsonValue::Double}};
    int refused = 0;
    for (const auto& [key, type] : types) {
        for (const QJsonValue& value : oneOfEachType()) {
            if (value.type() != type) {
                expectRefused(withValue(key, value), Outcome::notJson);
                ++refused;
            }
        }
    }
    for (const char* key : {"path", "status", "sha256", "diagnostic"}) {
        const bool mayBeAbsent = q(key) == u"sha256" || q(key) == u"diagnostic";
        for (const QJsonValue& value : oneOfEachType()) {
            if (!value.isString() && !(mayBeAbsent && value.isNull())) {
                expectRefused(withFileValue(fileIndex, q(key), value), Outcome::notJson);
                ++refused;
            }
        }
    }
    EXPECT_EQ(refused, 38);
    expectRefused(withFileValue(fileIndex, q("sha256"), QJsonValue()), Outcome::invalid);
}

TEST_F(BaselineTest, RefusesElementsOfAnotherType) {
    for (const QJsonValue& value : oneOfEachType()) {
        if (!value.isString()) {
            expectRefused(withValue(q("rootPaths"), QJsonArray{q("/etc/ppd"), value}), Outcome::notJson);
        }
        expectRefused(withValue(q("files"), QJsonArray{value}), Outcome::notJson);
    }
}

TEST_F(BaselineTest, RefusesNumbersThatItCannotHave) {
    const QByteArray good = QJsonDocument(goodSnapshot().toJson()).toJson();
    const auto with = [&good](const QByteArray& key, const QByteArray& old, const QByteArray& number) {
        const QByteArray before = "\"" + key + "\": " + old;
        EXPECT_EQ(good.count(before), 1);
        return QByteArray(good).replace(before, "\"" + key + "\": " + number);
    };
    for (const char* number :
         {"1e999", "-1e999", "NaN", "Infinity", "+1", "0x1", "", "1,5", "\"1\"", "\"NaN\"", "\"Infinity\"", "1 2"}) {
        expectRefused(with("schemaVersion", "1", number), Outcome::notJson);
        expectRefused(with("timestamp", "795000000.5", number), Outcome::notJson);
    }
    for (const char* number : {"1.5", "1.0000000000000002", "9223372036854775808", "1e300"}) {
        expectRefused(with("schemaVersion", "1", number), Outcome::notJson);
    }
    for (const char* number : {"0", "-0", "-0.0", "-1", "2", "9223372036854775807"}) {
        expectRefused(with("schemaVersion", "1", number), Outcome::invalid);
    }
}

TEST_F(BaselineTest, KeepsEveryFiniteTime) {
    for (const double seconds : {0.0, -0.0, -978307200.125, 1e300, 795000000.123456789, 4e-320}) {
        ProtectedSettingsSnapshot snapshot = goodSnapshot();
        snapshot.timestamp = {seconds};
        store_.save(snapshot);
        EXPECT_EQ(store_.load(), snapshot) << seconds;
    }
}

TEST_F(BaselineTest, RefusesStatusesThatThereAreNot) {
    for (const char* status : {"", "regularfile", "RegularFile", "file", "regularFile\n", "普通文件"}) {
        expectRefused(withFileValue(fileIndex, q("status"), q(status)), Outcome::notJson);
    }
}

TEST_F(BaselineTest, RefusesHashesThatAreNone) {
    const QString hash = *goodSnapshot().files[fileIndex].sha256;
    for (const qsizetype index : {linkIndex, fileIndex}) {
        for (const QString& bad : {hash.toUpper(), hash.chopped(1), hash + u'0', QString(), QString(64, u'x')}) {
            expectRefused(withFileValue(index, q("sha256"), bad), Outcome::invalid);
        }
    }
}

TEST_F(BaselineTest, RefusesPathsThatDoNotBelong) {
    for (const char* path : {"/etc/ppd2/w.ppd", "/etc/ppd.old", "/etc", "/", "", "etc/ppd/w.ppd", "/etc/ppd",
                             "/etc/ppd/link", "/gone", "/other", "/gonecal"}) {
        expectRefused(withFileValue(fileIndex, q("path"), q(path)), Outcome::invalid);
    }
    expectRefused(withFileValue(fileIndex, q("path"), QStringLiteral("/etc/ppd") + QChar(u'\0')), Outcome::invalid);
    expectRefused(withFileValue(0, q("path"), q("/etc/ppd/")), Outcome::invalid);
}

TEST_F(BaselineTest, RefusesRootsThatDoNotBelong) {
    for (const QJsonArray& roots :
         {QJsonArray{}, QJsonArray{q("/etc/ppd")}, QJsonArray{q("/etc/ppd"), q("/gone"), q("/gone")},
          QJsonArray{q("/etc/ppd"), q("/gone"), q("gone")}, QJsonArray{q("/etc/ppd"), q("/gone"), q("")},
          QJsonArray{q("/etc/ppd"), q("/gone"), q("/more")}, QJsonArray{q("/etc/ppd/"), q("/gone")},
          QJsonArray{q("/etc"), q("/gone")}, QJsonArray{q("/etc/pp"), q("/gone")},
          QJsonArray{QStringLiteral("/etc/ppd") + QChar(u'\0'), q("/gone")}}) {
        expectRefused(withValue(q("rootPaths"), roots), Outcome::invalid);
    }
}

TEST_F(BaselineTest, RefusesAFileThatIsCutAnywhere) {
    store_.save(goodSnapshot());
    const QByteArray whole = TemporaryFolder::read(path_);
    for (qsizetype twentieths = 0; twentieths < 20; ++twentieths) {
        expectRefused(whole.first(whole.size() * twentieths / 20), Outcome::notJson);
    }
    expectRefused(whole.trimmed().chopped(1), Outcome::notJson);
}

TEST_F(BaselineTest, RefusesWhatIsNoJsonObject) {
    for (const QByteArray& bytes :
         QByteArrayList{"", " \n", QByteArray(1, '\0'), QByteArray(4096, '\0'), "null", "1", "\"text\"", "[]", "{}",
                        "nonsense", "{\"files\":[]}{}", QByteArray(2000, '[')}) {
        expectRefused(bytes, Outcome::notJson);
    }
    const QByteArray good = QJsonDocument(goodSnapshot().toJson()).toJson();
    expectRefused(good + "{}", Outcome::notJson);
    expectRefused(QByteArray(good).replace("w.ppd", "\xff\xfe"), Outcome::notJson);
}

TEST_F(BaselineTest, RefusesAFileThatIsTooLargeToBeOne) {
    const qint64 size = ProtectedSettingsBaseline::largestBytes + 1;
    folder_.makeSparse(name_, size);
    EXPECT_EQ(loading(), Outcome::systemFailure);
    EXPECT_EQ(saving(), Outcome::systemFailure);
    EXPECT_EQ(QFileInfo(path_).size(), size);
}

TEST_F(BaselineTest, KeepsTheBytesOfADamagedFileUntilThePersonRemovesIt) {
    expectRefused(QByteArray("damaged"), Outcome::notJson);
    ASSERT_TRUE(QFile::remove(path_));
    EXPECT_EQ(saving(), Outcome::done);
    EXPECT_EQ(loading(), Outcome::done);
}

// Places

TEST_F(BaselineTest, RefusesWhatIsNoFile) {
    folder_.makeFolder(name_);
    EXPECT_EQ(loading(), Outcome::systemFailure);
    EXPECT_EQ(saving(), Outcome::systemFailure);
    EXPECT_TRUE(QFileInfo(path_).isDir());
    ASSERT_TRUE(QDir().rmdir(path_));
    ASSERT_EQ(::mkfifo(folder_.native(name_).constData(), 0600), 0);
    EXPECT_EQ(loading(), Outcome::systemFailure);
    EXPECT_EQ(saving(), Outcome::systemFailure);

    struct stat facts {};

    ASSERT_EQ(::lstat(folder_.native(name_).constData(), &facts), 0);
    EXPECT_TRUE(S_ISFIFO(facts.st_mode));
}

TEST_F(BaselineTest, IsNotWrittenThroughALinkThatLeadsNowhere) {
    folder_.link("nowhere", name_);
    EXPECT_EQ(saving(), Outcome::systemFailure);
    EXPECT_TRUE(QFileInfo(path_).isSymLink());
    EXPECT_FALSE(QFile::exists(folder_.path("nowhere")));
}

TEST_F(BaselineTest, KeepsTheOldFileOnAFullDisk) {
    for (const int count : {0, 10, 1000}) {
        ProtectedSettingsSnapshot larger = goodSnapshot();
        for (int index = 0; index < count; ++index) {
            larger.files.append(missing(q("/gone/%1").arg(index)));
        }
        const QByteArray answer = inChildProcess([&]() -> QByteArray {
            // Only the superuser can have a disk of his own; for others no file may grow at all.
            const bool hasDisk = test::mountSmallDisk(folder_.path().toUtf8());
            store_.save(goodSnapshot());
            const QByteArray old = TemporaryFolder::read(path_);
            if (!hasDisk && !test::limitFileSize(0)) {
                return "no limit";
            }
            if (hasDisk) {
                QFile filler(folder_.path("filler"));
                const bool isOpen = filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
                while (isOpen && filler.write(QByteArray(1024, 'f')) > 0) {
                }
            }
            try {
                store_.save(larger);
                return "saved";
            } catch (const FileSystemError& error) {
                if (error.code() != (hasDisk ? ENOSPC : EFBIG)) {
                    return error.what();
                }
            }
            const auto names = QDir(folder_.path()).entryList(QDir::Files | QDir::Hidden);
            return TemporaryFolder::read(path_) == old && names.size() == (hasDisk ? 2 : 1) ? "kept" : "changed";
        });
        EXPECT_EQ(answer, "kept") << count;
    }
}

TEST_F(BaselineTest, CannotBeReadOrWrittenWithoutPermission) {
    store_.save(goodSnapshot());
    const QByteArray old = TemporaryFolder::read(path_);
    folder_.setMode("", 0755);
    const auto outcomes = [&]() -> QByteArray {
        return inChildProcess([&]() -> QByteArray {
            return becomeOrdinaryUser() ? QByteArray::number(static_cast<int>(loading())) + ' ' +
                                              QByteArray::number(static_cast<int>(saving()))
                                        : QByteArray("still root");
        });
    };
    folder_.setMode(name_, 0);
    EXPECT_EQ(outcomes(), "4 4") << "a file that may not be read";
    folder_.setMode(name_, 0444);
    EXPECT_EQ(outcomes(), "0 4") << "a file that may not be written";
    folder_.setMode("", 0);
    EXPECT_EQ(outcomes(), "4 4") << "a folder that may not be entered: nobody knows of no file";
    folder_.setMode("", 0700);
    EXPECT_EQ(TemporaryFolder::read(path_), old);
}

TEST_F(BaselineTest, IsNotKeptInAPlaceThatItSpeaksOf) {
    const ProtectedFolder settings;
    settings.write("a.ppd", "content");
    const ProtectedSettingsSnapshot snapshot =
        SettingsPreservationService::capture({QUrl::fromLocalFile(settings.path(""))});
    const ProtectedFolder links;
    ASSERT_TRUE(QFile::link(settings.path(""), links.path("link")));
    for (const QString& path : {settings.path("baseline.json"), settings.path("new/baseline.json"),
                                links.path("link") + q("/baseline.json")}) {
        try {
            ProtectedSettingsBaseline::save(snapshot, path);
            FAIL() << path.toStdString();
        } catch (const ProtectedPlaceError& error) {
            EXPECT_EQ(error.message(), q("The settings baseline cannot be kept in the protected path \"%1\". Choose "
                                         "another place.")
                                           .arg(path));
        }
    }
    EXPECT_EQ(QDir(settings.path("")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{q("a.ppd")});
    ProtectedSettingsBaseline::save(snapshot, links.path("baseline.json"));
}

// The store's folder

TEST(BaselineStore, MakesTheGivenFolder) {
    const ProtectedFolder folder;
    const QUrl directory = QUrl::fromLocalFile(folder.path("a/b/c"));
    const ProtectedSettingsBaselineStore store(directory);
    EXPECT_EQ(store.directory(), directory);
    EXPECT_TRUE(QFileInfo(folder.path("a/b/c")).isDir());
    EXPECT_EQ(store.load(), std::nullopt);
    store.save(goodSnapshot());
    EXPECT_EQ(ProtectedSettingsBaselineStore(directory).load(), goodSnapshot());
    EXPECT_EQ(ProtectedSettingsBaseline::load(folder.path("a/b/c/settings-preservation-baseline.json")),
              goodSnapshot());
}

TEST(BaselineStore, HasAPlainFileURLForAFolderWithATrailingSlash) {
    const ProtectedFolder folder;
    const ProtectedSettingsBaselineStore store(QUrl::fromLocalFile(folder.path("a") + u'/'));
    EXPECT_EQ(store.fileURL(), QUrl::fromLocalFile(folder.path("a/settings-preservation-baseline.json")));
}

TEST(BaselineStore, TakesAnyFolderName) {
    const ProtectedFolder folder;
    for (const char* name : {"a b", "卷%20#?", "new\nline", "😀"}) {
        const ProtectedSettingsBaselineStore store(QUrl::fromLocalFile(folder.path(name)));
        store.save(goodSnapshot());
        EXPECT_TRUE(QFile::exists(folder.path(name) + q("/settings-preservation-baseline.json"))) << name;
    }
}

TEST(BaselineStore, FailsWithoutAPlace) {
    const ProtectedFolder folder;
    folder.write("file", "content");
    for (const QUrl& place : {QUrl::fromLocalFile(folder.path("file")), QUrl::fromLocalFile(folder.path("file/below")),
                              QUrl(q("https://localhost/tmp")), QUrl()}) {
        EXPECT_THROW(static_cast<void>(ProtectedSettingsBaselineStore(place)), FileSystemError)
            << place.toString().toStdString();
    }
    EXPECT_EQ(TemporaryFolder::read(folder.path("file")), "content");
}

TEST(BaselineStore, LivesInTheApplicationFolderByDefault) {
    const ProtectedFolder folder;
    const QByteArray answer = inChildProcess([&]() -> QByteArray {
        qputenv("XDG_DATA_HOME", folder.native("data"));
        const ProtectedSettingsBaselineStore store;
        store.save(goodSnapshot());
        return store.fileURL().toString().toUtf8();
    });
    const QString path = folder.path("data/ORVEX/settings-preservation-baseline.json");
    EXPECT_EQ(answer, QUrl::fromLocalFile(path).toString().toUtf8());
    EXPECT_EQ(ProtectedSettingsBaseline::load(path), goodSnapshot());

    struct stat facts {};

    ASSERT_EQ(::stat(folder.native("data/ORVEX").constData(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 07777U, 0700U);
}

} // namespace orvex
