#include "ProtectedSettings.h"

#include "InChinese.h"
#include "Json/JsonError.h"
#include "Json/JsonWriter.h"
#include "ProtectedFolder.h"

#include <QJsonArray>

#include <gtest/gtest.h>

#include <limits>

namespace orvex {

namespace {

using platform::JsonError;
using platform::JsonReader;
using test::Status;

const QString hash = QString(64, u'a');

/// The message of the refusal; empty if there is none.
template <typename Record>
QString refusalOf(const QByteArray& json) {
    try {
        static_cast<void>(Record::fromJson(JsonReader::parse(json)));
    } catch (const JsonError& error) {
        return error.message();
    }
    return {};
}

QByteArray compact(const QJsonObject& json) {
    return platform::writeJson(json, platform::JsonForm::compactLine);
}

ProtectedSettingsFile fileOf(const QByteArray& json) {
    return ProtectedSettingsFile::fromJson(JsonReader::parse(json));
}

ProtectedSettingsSnapshot snapshotOf(const QByteArray& json) {
    return ProtectedSettingsSnapshot::fromJson(JsonReader::parse(json));
}

} // namespace

TEST(ProtectedSettingsFile, WritesEveryStatusByItsName) {
    const QList<std::pair<Status, QByteArray>> names{
        {Status::regularFile, "regularFile"},   {Status::directory, "directory"},
        {Status::missing, "missing"},           {Status::unreadable, "unreadable"},
        {Status::symbolicLink, "symbolicLink"}, {Status::unsupported, "unsupported"}};
    for (qsizetype index = 0; index < names.size(); ++index) {
        const auto& [status, name] = names[index];
        EXPECT_EQ(static_cast<int>(status), index);
        const QByteArray json = R"({"path":"/a","status":")" + name + R"("})";
        EXPECT_EQ(compact(ProtectedSettingsFile{.path = QStringLiteral("/a"), .status = status}.toJson()), json);
        EXPECT_EQ(fileOf(json).status, status) << name.constData();
    }
}

TEST(ProtectedSettingsFile, RefusesAStatusThatThereIsNot) {
    for (const QByteArray name : {"", "RegularFile", "regularfile", "regularFile ", "file", "0"}) {
        EXPECT_EQ(refusalOf<ProtectedSettingsFile>(R"({"path":"/a","status":")" + name + R"("})"),
                  QStringLiteral("status: There is no status named %1.").arg(QString::fromUtf8(name)));
    }
    const test::InChinese inChinese;
    EXPECT_EQ(refusalOf<ProtectedSettingsFile>(R"({"path":"/a","status":"file"})"),
              QString::fromUtf8("status：没有名为 file 的状态。"));
}

TEST(ProtectedSettingsFile, IsVerifiableIfAnotherLookCouldShowThatNothingHasChanged) {
    for (const auto& [status, isVerifiable] :
         {std::pair(Status::directory, true), std::pair(Status::missing, true), std::pair(Status::unreadable, false),
          std::pair(Status::symbolicLink, false), std::pair(Status::unsupported, false)}) {
        EXPECT_EQ((ProtectedSettingsFile{.path = {}, .status = status}.isVerifiable()), isVerifiable);
        EXPECT_EQ((ProtectedSettingsFile{.path = {}, .status = status, .sha256 = hash}.isVerifiable()), isVerifiable)
            << "a hash helps a regular file alone";
    }
    EXPECT_TRUE((ProtectedSettingsFile{.path = {}, .status = Status::regularFile, .sha256 = hash}.isVerifiable()));
    EXPECT_FALSE((ProtectedSettingsFile{.path = {}, .status = Status::regularFile}.isVerifiable()));
}

TEST(ProtectedSettingsFile, LeavesOutWhatIsAbsent) {
    const ProtectedSettingsFile bare{.path = QStringLiteral("/a/b")};
    EXPECT_EQ(compact(bare.toJson()), R"({"path":"/a/b","status":"missing"})");
    ProtectedSettingsFile full = bare;
    full.status = Status::symbolicLink;
    full.sha256 = hash;
    full.diagnostic = QString::fromUtf8("链接");
    EXPECT_EQ(compact(full.toJson()),
              R"({"diagnostic":"链接","path":"/a/b","sha256":")" + hash.toLatin1() + R"(","status":"symbolicLink"})");
    for (const ProtectedSettingsFile& file : {bare, full}) {
        EXPECT_EQ(fileOf(compact(file.toJson())), file);
    }
}

TEST(ProtectedSettingsFile, TakesNullForAnAbsentFieldAndIgnoresKeysThatItDoesNotKnow) {
    EXPECT_EQ(fileOf(R"({"path":"/a","status":"directory","sha256":null,"diagnostic":null,"size":5})"),
              test::directory(QStringLiteral("/a")));
}

TEST(ProtectedSettingsFile, RefusesMissingKeysAndOtherTypes) {
    EXPECT_EQ(refusalOf<ProtectedSettingsFile>(R"({"status":"missing"})"),
              QStringLiteral("path: The required key is missing."));
    EXPECT_EQ(refusalOf<ProtectedSettingsFile>(R"({"path":"/a"})"),
              QStringLiteral("status: The required key is missing."));
    for (const QByteArray key : {"path", "status", "sha256", "diagnostic"}) {
        for (const QByteArray value : {"1", "true", "[]", "{}"}) {
            QJsonObject json{{QStringLiteral("path"), QStringLiteral("/a")},
                             {QStringLiteral("status"), QStringLiteral("missing")}};
            const auto other = QJsonDocument::fromJson("[" + value + "]").array()[0];
            json.insert(QString::fromLatin1(key), QJsonValue(other));
            EXPECT_EQ(refusalOf<ProtectedSettingsFile>(compact(json)),
                      QString::fromLatin1(key) + QStringLiteral(": Expected text."));
        }
    }
}

TEST(ProtectedSettingsSnapshot, WritesItsFieldsUnderTheirNames) {
    const ProtectedSettingsSnapshot snapshot{.timestamp = {700000000.25},
                                             .rootPaths = {QStringLiteral("/a"), QStringLiteral("/b")},
                                             .files = {test::directory(QStringLiteral("/a"))}};
    EXPECT_EQ(ProtectedSettingsSnapshot::currentSchemaVersion, 1);
    EXPECT_EQ(compact(snapshot.toJson()),
              R"({"files":[{"path":"/a","status":"directory"}],"rootPaths":["/a","/b"],"schemaVersion":1,)"
              R"("timestamp":700000000.25})");
}

TEST(ProtectedSettingsSnapshot, ComesBackAsItWas) {
    ProtectedSettingsSnapshot snapshot{
        .schemaVersion = -7,
        .timestamp = {785432100.123456789},
        .rootPaths = {QStringLiteral("/z"), QStringLiteral("/z"), QString::fromUtf8("/卷\n\"\\")},
        .files = {test::unreadable(QStringLiteral("/z"), QStringLiteral("why")),
                  test::regularFile(QStringLiteral("/a"), "abc")}};
    EXPECT_EQ(snapshotOf(compact(snapshot.toJson())), snapshot) << "nothing is sorted or judged here";
    snapshot.schemaVersion = std::numeric_limits<qint64>::max();
    EXPECT_EQ(snapshotOf(compact(snapshot.toJson())), snapshot);
}

TEST(ProtectedSettingsSnapshot, HasNoJsonForAMomentThatIsNotFinite) {
    for (const double seconds : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        const ProtectedSettingsSnapshot snapshot{.timestamp = {seconds}};
        EXPECT_THROW(static_cast<void>(snapshot.toJson()), platform::JsonInvalidNumber);
    }
}

TEST(ProtectedSettingsSnapshot, NamesThePlaceOfWhatItCannotRead) {
    const QByteArray begin = R"({"schemaVersion":1,"timestamp":0,"rootPaths":["/a"],"files":)";
    EXPECT_EQ(refusalOf<ProtectedSettingsSnapshot>(begin + R"([{"path":"/a","status":"missing"},{"path":"/b"}]})"),
              QStringLiteral("files[1].status: The required key is missing."));
    EXPECT_EQ(refusalOf<ProtectedSettingsSnapshot>(begin + R"({"path":"/a","status":"missing"}})"),
              QStringLiteral("files: Expected an array."));
    EXPECT_EQ(
        refusalOf<ProtectedSettingsSnapshot>(R"({"schemaVersion":1,"timestamp":0,"rootPaths":["/a",5],"files":[]})"),
        QStringLiteral("rootPaths[1]: Expected text."));
    EXPECT_EQ(refusalOf<ProtectedSettingsSnapshot>("[]"), QStringLiteral("Expected an object."));
}

TEST(SettingsPreservationComparison, IsUnchangedIfNothingChangedAndNothingIsUnverifiable) {
    SettingsPreservationComparison comparison;
    EXPECT_TRUE(comparison.isUnchanged());
    EXPECT_EQ(compact(comparison.toJson()), R"({"changes":[],"isUnchanged":true,"unverifiablePaths":[]})");
    comparison.unverifiablePaths = {QStringLiteral("/a")};
    EXPECT_FALSE(comparison.isUnchanged());
    EXPECT_EQ(compact(comparison.toJson()), R"({"changes":[],"isUnchanged":false,"unverifiablePaths":["/a"]})");
    comparison.unverifiablePaths.clear();
    comparison.changes = {{.path = QStringLiteral("/a"), .before = std::nullopt, .after = std::nullopt}};
    EXPECT_FALSE(comparison.isUnchanged());
}

TEST(SettingsPreservationComparison, LeavesOutTheSideThatIsAbsent) {
    const QString path = QStringLiteral("/a");
    const SettingsPreservationComparison comparison{
        .changes = {{.path = path, .before = std::nullopt, .after = test::directory(path)},
                    {.path = path, .before = test::missing(path), .after = std::nullopt}},
        .unverifiablePaths = {}};
    EXPECT_EQ(compact(comparison.toJson()),
              R"({"changes":[{"after":{"path":"/a","status":"directory"},"path":"/a"},)"
              R"({"before":{"path":"/a","status":"missing"},"path":"/a"}],"isUnchanged":false,)"
              R"("unverifiablePaths":[]})");
}

} // namespace orvex
