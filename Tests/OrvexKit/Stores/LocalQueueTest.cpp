#include "Stores/LocalQueue.h"

#include "Files/FileSystemError.h"
#include "InChinese.h"
#include "Interrupted.h"
#include "Json/JsonError.h"
#include "Json/JsonPortions.h"
#include "StoreFixtures.h"

#include <QFileInfo>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <limits>

namespace orvex {

namespace {

using test::failureOf;
using test::TemporaryFolder;

constexpr auto storedQueue = R"([
    {
        "canvasMediaName": "Canvas",
        "colorWorkflow": {
            "driverColorCorrectionDisabledConfirmed": true,
            "intent": "perceptual",
            "mode": "appManaged"
        },
        "createdAt": 700000000.25,
        "driverQuality": {
            "keyword": "Resolution",
            "value": "600x600dpi"
        },
        "id": "9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4",
        "inspectedICC": "Canvas\/画, CMYK",
        "outputICCSHA256": "0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef",
        "presetName": "Canvas · 60 in",
        "printerName": "W9400",
        "rollLayout": {
            "items": [
                {
                    "id": "00000001-0000-0000-0000-000000000000",
                    "originalHeightInches": 20,
                    "originalWidthInches": 10,
                    "pixelHeight": 20000,
                    "pixelWidth": 10000,
                    "rotationQuarterTurns": 1,
                    "sourceURL": "file:\/\/\/images\/a%20b.png",
                    "title": "a b",
                    "widthInches": 20,
                    "xInches": 1.5,
                    "yInches": 0.1
                }
            ],
            "schemaVersion": 1,
            "widthInches": 59.5
        },
        "rollSourceAudits": [
            {
                "artworkID": "00000001-0000-0000-0000-000000000000",
                "pixelHeight": 20000,
                "pixelWidth": 10000,
                "renderedBitsPerComponent": 16,
                "renderedColorModel": "CMYK",
                "sourceProfileName": "Adobe RGB",
                "sourceProfileSHA256": "fedcba9876543210fedcba9876543210fedcba9876543210fedcba9876543210",
                "sourceURL": "file:\/\/\/images\/a%20b.png"
            }
        ],
        "settings": {
            "driverPageSize": "Custom",
            "heightMM": 1000.5,
            "marginMM": 63.5,
            "mediaNote": "matte\/satin",
            "paperSource": "卷纸",
            "placement": "填满并裁边",
            "widthMM": 1524
        },
        "sourceProfile": "mixed",
        "title": "Roll 1\/2 \"画\""
    },
    {
        "createdAt": -0.5,
        "id": "00000002-0000-0000-0000-000000000000",
        "printerName": "",
        "settings": {
            "driverPageSize": "",
            "heightMM": 297,
            "marginMM": 10,
            "mediaNote": "",
            "paperSource": "卷纸",
            "placement": "完整放入",
            "widthMM": 210
        },
        "sourceProfile": "",
        "title": ""
    }
]
)";

/// A job as the oldest version wrote it.
StagedJob bareJob(unsigned number = 2) {
    return {.id = QUuid(number, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0),
            .title = {},
            .printerName = {},
            .createdAt = {-0.5},
            .settings = {},
            .sourceProfile = {}};
}

RollArtwork artwork() {
    RollArtwork artwork;
    artwork.id = QUuid(1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    artwork.sourceURL = QUrl::fromLocalFile(QStringLiteral("/images/a b.png"));
    artwork.title = QStringLiteral("a b");
    artwork.pixelWidth = 10000;
    artwork.pixelHeight = 20000;
    artwork.originalWidthInches = 10.0;
    artwork.originalHeightInches = 20.0;
    artwork.widthInches = 20.0;
    artwork.xInches = 1.5;
    artwork.yInches = 0.1;
    artwork.rotationQuarterTurns = 1;
    return artwork;
}

/// A job with all that a record may have.
StagedJob fullJob() {
    StagedJob job = bareJob();
    job.id = QUuid::fromString(u"9b2f4e1c-0d3a-4b5c-8d6e-7f8091a2b3c4");
    job.title = QStringLiteral("Roll 1/2 \"画\"");
    job.printerName = QStringLiteral("W9400");
    job.createdAt = {700000000.25};
    job.settings = {.widthMM = 1524.0,
                    .heightMM = 1000.5,
                    .marginMM = 63.5,
                    .placement = Placement::fill,
                    .paperSource = QStringLiteral("卷纸"),
                    .mediaNote = QStringLiteral("matte/satin"),
                    .driverPageSize = QStringLiteral("Custom")};
    job.sourceProfile = QStringLiteral("mixed");
    job.inspectedICC = QStringLiteral("Canvas/画, CMYK");
    job.colorWorkflow = ColorWorkflow{.mode = ColorManagementMode::appManaged,
                                      .intent = ColorRenderingIntent::perceptual,
                                      .driverColorCorrectionDisabledConfirmed = true};
    job.outputICCSHA256 = QStringLiteral("0123456789abcdef").repeated(4);
    job.driverQuality =
        DriverOptionSelection{.keyword = QStringLiteral("Resolution"), .value = QStringLiteral("600x600dpi")};
    job.presetName = QStringLiteral("Canvas · 60 in");
    job.canvasMediaName = QStringLiteral("Canvas");
    job.rollLayout = RollLayout({artwork()}, 59.5);
    job.rollSourceAudits = {{.artworkID = artwork().id,
                             .sourceURL = artwork().sourceURL,
                             .sourceProfileName = QStringLiteral("Adobe RGB"),
                             .sourceProfileSHA256 = QStringLiteral("fedcba9876543210").repeated(4),
                             .pixelWidth = 10000,
                             .pixelHeight = 20000,
                             .renderedBitsPerComponent = 16,
                             .renderedColorModel = QStringLiteral("CMYK")}};
    return job;
}

const QStringList optionalKeys{QStringLiteral("inspectedICC"),    QStringLiteral("colorWorkflow"),
                               QStringLiteral("outputICCSHA256"), QStringLiteral("driverQuality"),
                               QStringLiteral("presetName"),      QStringLiteral("canvasMediaName"),
                               QStringLiteral("rollLayout"),      QStringLiteral("rollSourceAudits")};

class LocalQueueTest : public ::testing::Test {
protected:
    LocalQueueStore store() const { return LocalQueueStore(QUrl::fromLocalFile(folder_.path())); }

    QString file() const { return folder_.path(QStringLiteral("queue.json")); }

    void write(const QByteArray& bytes) const { folder_.write(QStringLiteral("queue.json"), bytes); }

    QByteArray stored() const { return TemporaryFolder::read(file()); }

    QString writePDF(const StagedJob& job) const { return folder_.write(job.pdfFileName(), "%PDF-1.7"); }

    /// What loading a file of these bytes fails with; the file must stay as it is.
    std::string loadingFailure(const QByteArray& bytes) const {
        write(bytes);
        const std::string failure = failureOf([&] { static_cast<void>(store().load()); });
        EXPECT_EQ(stored(), bytes);
        EXPECT_EQ(folder_.names(), QStringList{QStringLiteral("queue.json")});
        return failure;
    }

    TemporaryFolder folder_;
};

using JobRemoval = LocalQueueTest;
using JobExport = LocalQueueTest;

} // namespace

TEST(StagedJob, IsMadeAtTheCurrentTime) {
    const double before = platform::Timestamp::now().secondsSince2001;
    const StagedJob job;
    EXPECT_GE(job.createdAt.secondsSince2001, before);
    EXPECT_LE(job.createdAt.secondsSince2001, platform::Timestamp::now().secondsSince2001);
}

TEST(StagedJob, HasAPDFNamedAfterItsIdInUpperCase) {
    EXPECT_EQ(fullJob().pdfFileName(), QStringLiteral("9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4.pdf"));
}

// The folder

TEST_F(LocalQueueTest, MakesItsFolder) {
    const QUrl directory = QUrl::fromLocalFile(folder_.path(QStringLiteral("a/b 画")));
    EXPECT_EQ(LocalQueueStore(directory).directory(), directory);
    EXPECT_TRUE(QFileInfo(folder_.path(QStringLiteral("a/b 画"))).isDir());
}

TEST_F(LocalQueueTest, IsNotReplacedByWhatCouldNotBeReadAgain) {
    store().save({bareJob()});
    const QByteArray before = stored();
    StagedJob large = bareJob();
    large.title = QString(platform::JsonPortions::largestElementBytes / 2, u'x');
    EXPECT_EQ(failureOf([&] { store().save({large}); }), file().toStdString() + ": File too large");
    EXPECT_EQ(stored(), before);
    large.title.chop(1 << 16);
    store().save({large});
    EXPECT_EQ(store().load(), QList{large});
}

TEST_F(LocalQueueTest, IsNotTakenForEmptyWhereALinkLeadsNowhere) {
    ASSERT_TRUE(QFile::link(folder_.path(QStringLiteral("unmounted")), file()));
    const std::string failure = file().toStdString() + ": No such file or directory";
    EXPECT_EQ(failureOf([&] { static_cast<void>(store().load()); }), failure);
    EXPECT_EQ(failureOf([&] { store().save({}); }), failure);
    EXPECT_EQ(folder_.names(), QStringList{QStringLiteral("queue.json")});
}

TEST_F(LocalQueueTest, LivesInTheApplicationFolderByDefault) {
    const QByteArray place = test::inChildProcess([&] {
        qputenv("XDG_DATA_HOME", folder_.path().toUtf8());
        const LocalQueueStore store;
        store.save({bareJob()});
        return store.directory().toLocalFile().toUtf8();
    });
    EXPECT_EQ(QString::fromUtf8(place), folder_.path(QStringLiteral("ORVEX")));
    EXPECT_TRUE(QFileInfo(folder_.path(QStringLiteral("ORVEX/queue.json"))).isFile());
}

TEST_F(LocalQueueTest, FailsWhereNoFolderCanBe) {
    const QString file = folder_.write(QStringLiteral("file"), "");
    EXPECT_THROW(LocalQueueStore(QUrl::fromLocalFile(file)), platform::FileSystemError);
    EXPECT_THROW(LocalQueueStore(QUrl::fromLocalFile(file + QStringLiteral("/below"))), platform::FileSystemError);
    EXPECT_THROW(LocalQueueStore(QUrl(QStringLiteral("https://example.com/"))), platform::FileSystemError);
}

TEST_F(LocalQueueTest, HasThePDFBesideTheList) {
    EXPECT_EQ(store().pdfURL(fullJob()), QUrl::fromLocalFile(folder_.path(fullJob().pdfFileName())));
    const LocalQueueStore slash(QUrl::fromLocalFile(folder_.path() + u'/'));
    EXPECT_EQ(slash.pdfURL(fullJob()), store().pdfURL(fullJob()));
    EXPECT_EQ(folder_.names(), QStringList()) << "the place is only computed";
}

// Loading and saving

TEST_F(LocalQueueTest, IsEmptyInAFreshFolderAndMakesNoFile) {
    EXPECT_EQ(store().load(), QList<StagedJob>());
    EXPECT_EQ(folder_.names(), QStringList());
}

TEST_F(LocalQueueTest, IsAnEmptyArrayWithoutJobs) {
    store().save({});
    EXPECT_EQ(test::text(test::tree(stored())), "[]");
    EXPECT_EQ(stored(), "[\n]\n");
    EXPECT_EQ(store().load(), QList<StagedJob>());
}

TEST_F(LocalQueueTest, IsStoredToTheByte) {
    store().save({fullJob(), bareJob()});
    EXPECT_EQ(stored().toStdString(), storedQueue);
    EXPECT_EQ(folder_.names(), QStringList{QStringLiteral("queue.json")});
}

TEST_F(LocalQueueTest, IsStoredAlikeInChinese) {
    const test::InChinese chinese;
    store().save({fullJob(), bareJob()});
    EXPECT_EQ(stored().toStdString(), storedQueue);
}

TEST_F(LocalQueueTest, IsReadAsWritten) {
    write(storedQueue);
    EXPECT_EQ(store().load(), (QList{fullJob(), bareJob()}));
}

TEST_F(LocalQueueTest, KeepsItsOrderAndRepeatedIds) {
    const QList jobs{bareJob(7), fullJob(), bareJob(3), fullJob(), bareJob(9)};
    store().save(jobs);
    EXPECT_EQ(store().load(), jobs);
}

TEST_F(LocalQueueTest, HoldsManyJobs) {
    QList<StagedJob> jobs;
    for (unsigned number = 0; number < 300; ++number) {
        jobs.append(number % 7 == 0 ? fullJob() : bareJob(number));
    }
    store().save(jobs);
    EXPECT_EQ(store().load(), jobs);
    EXPECT_EQ(stored(), platform::writeJson(test::tree(stored()), platform::JsonForm::prettyEscapedSlashes));
}

TEST_F(LocalQueueTest, IsReadAnewByEveryCall) {
    const LocalQueueStore first = store();
    const LocalQueueStore second = store();
    first.save({bareJob(1)});
    EXPECT_EQ(second.load(), QList{bareJob(1)});
    second.save({bareJob(2), bareJob(1)});
    EXPECT_EQ(first.load(), (QList{bareJob(2), bareJob(1)}));
}

TEST_F(LocalQueueTest, ReplacesAFileThatCannotBeReadOnlyWhenItIsSaved) {
    EXPECT_EQ(loadingFailure("damaged"), "Not valid JSON (at byte 0).");
    store().save({bareJob()});
    EXPECT_EQ(store().load(), QList{bareJob()}) << "the store writes what it is given";
}

// Records of other versions and writers

TEST_F(LocalQueueTest, ReadsARecordOfAnOlderVersion) {
    QJsonObject json = fullJob().toJson();
    json.remove(u"colorWorkflow");
    write(test::text(QJsonArray{json}));
    StagedJob expected = fullJob();
    expected.colorWorkflow.reset();
    EXPECT_EQ(store().load(), QList{expected});
    for (const QString& key : optionalKeys) {
        json.remove(key);
    }
    write(test::text(QJsonArray{json}));
    ASSERT_EQ(store().load().size(), 1);
    const StagedJob oldest = store().load().first();
    EXPECT_FALSE(oldest.inspectedICC || oldest.colorWorkflow || oldest.outputICCSHA256 || oldest.driverQuality ||
                 oldest.presetName || oldest.canvasMediaName || oldest.rollLayout || oldest.rollSourceAudits);
}

TEST_F(LocalQueueTest, ReadsNullAsAbsent) {
    QJsonObject json = fullJob().toJson();
    for (const QString& key : optionalKeys) {
        json[key] = QJsonValue::Null;
    }
    write(test::text(QJsonArray{json}));
    StagedJob expected = fullJob();
    for (auto* text :
         {&expected.inspectedICC, &expected.outputICCSHA256, &expected.presetName, &expected.canvasMediaName}) {
        text->reset();
    }
    expected.colorWorkflow.reset();
    expected.driverQuality.reset();
    expected.rollLayout.reset();
    expected.rollSourceAudits.reset();
    EXPECT_EQ(store().load(), QList{expected});
    store().save(store().load());
    for (const QString& key : optionalKeys) {
        EXPECT_FALSE(stored().contains(key.toUtf8())) << key.toStdString();
    }
}

TEST_F(LocalQueueTest, TellsEmptyListsAndTextsFromAbsentOnes) {
    StagedJob job = bareJob();
    job.presetName = QString();
    job.rollSourceAudits = QList<RollSourceAudit>();
    job.rollLayout = RollLayout();
    store().save({job});
    ASSERT_EQ(store().load().size(), 1);
    EXPECT_EQ(store().load().first().presetName, QString());
    EXPECT_EQ(store().load().first().rollSourceAudits, QList<RollSourceAudit>());
    EXPECT_EQ(store().load().first().rollLayout, RollLayout());
}

TEST_F(LocalQueueTest, NeedsEveryRequiredKey) {
    QStringList optional{QStringLiteral("[0].rollLayout.widthInches"),
                         QStringLiteral("[0].rollSourceAudits[0].sourceProfileSHA256")};
    for (const QString& key : optionalKeys) {
        optional.append(QStringLiteral("[0].") + key);
    }
    int keys = 0;
    test::withoutKeys(test::tree(storedQueue), [&](const QString& place, const QJsonValue& tree) {
        ++keys;
        EXPECT_EQ(loadingFailure(test::text(tree)),
                  optional.contains(place) ? "(none)" : place.toStdString() + ": The required key is missing.");
    });
    EXPECT_EQ(keys, 14 + 7 + 3 + 2 + 3 + 11 + 8 + 6 + 7);
}

TEST_F(LocalQueueTest, NeedsTheTypeOfEveryValue) {
    QStringList optional{QStringLiteral("[0].rollSourceAudits[0].sourceProfileSHA256")};
    for (const QString& key : optionalKeys) {
        optional.append(QStringLiteral("[0].") + key);
    }
    test::withOtherTypes(test::tree(storedQueue), [&](const QString& place, const QJsonValue& tree) {
        const std::string failure = loadingFailure(test::text(tree));
        const bool isAbsent = optional.contains(place) && test::valueAt(tree, place).isNull();
        EXPECT_EQ(isAbsent ? failure == "(none)" : failure.starts_with(place.toStdString() + ": Expected "), true)
            << place.toStdString() << ": " << failure;
    });
}

TEST_F(LocalQueueTest, NamesTheKeyPathOfWhatIsAmiss) {
    StagedJob job = fullJob();
    job.rollLayout->items = {artwork(), artwork(), artwork(), artwork()};
    QJsonObject layout = job.toJson()[u"rollLayout"].toObject();
    QJsonArray items = layout[u"items"].toArray();
    QJsonObject item = items[3].toObject();
    item[u"widthInches"] = QStringLiteral("20");
    items[3] = item;
    layout[u"items"] = items;
    QJsonObject json = job.toJson();
    json[u"rollLayout"] = layout;
    EXPECT_EQ(loadingFailure(test::text(QJsonArray{bareJob().toJson(), json})),
              "[1].rollLayout.items[3].widthInches: Expected a number.");
    const test::InChinese chinese;
    EXPECT_EQ(loadingFailure(test::text(QJsonArray{bareJob().toJson(), json})),
              "[1].rollLayout.items[3].widthInches：应为数字。");
}

TEST_F(LocalQueueTest, IsUnreadableWithValuesThatNoVersionKnows) {
    const auto failure = [&](const char* known, const char* unknown) {
        return loadingFailure(QByteArray(storedQueue).replace(known, unknown));
    };
    EXPECT_EQ(failure("appManaged", "magic"), "[0].colorWorkflow.mode: Unknown color management mode.");
    EXPECT_EQ(failure("perceptual", "magic"), "[0].colorWorkflow.intent: Unknown rendering intent.");
    EXPECT_EQ(failure("完整放入", "magic"), "[1].settings.placement: Unknown placement.");
    EXPECT_TRUE(failure("59.5", "70").starts_with("[0].rollLayout.widthInches: Roll width must be"));
    EXPECT_EQ(failure("00000002-", "00000002"), "[1].id: Expected a UUID.");
}

TEST_F(LocalQueueTest, IsAnArray) {
    EXPECT_EQ(loadingFailure("{}"), "Expected an array.");
    EXPECT_EQ(loadingFailure(""), "Not valid JSON (at byte 0).");
    EXPECT_EQ(loadingFailure("[7]"), "[0]: Expected an object.");
    EXPECT_EQ(loadingFailure("[[]]"), "[0]: Expected an object.");
    EXPECT_EQ(loadingFailure(QByteArray(storedQueue).trimmed().chopped(1) + ",]"),
              "Not valid JSON (at byte " + std::to_string(qstrlen(storedQueue) - 1) + ").");
}

TEST_F(LocalQueueTest, AppliesNoRuleToItsRecords) {
    StagedJob job = fullJob();
    job.settings.widthMM = -1.0;
    job.driverQuality->keyword = QStringLiteral("CutMedia");
    job.outputICCSHA256 = QStringLiteral("not a digest");
    job.rollLayout->schemaVersion = 9;
    store().save({job});
    EXPECT_EQ(store().load(), QList{job});
}

TEST_F(LocalQueueTest, IsReadInTheSpellingsOfOtherWriters) {
    for (const QByteArray& spelling : test::spellingsOf(storedQueue)) {
        write(spelling);
        EXPECT_EQ(store().load(), (QList{fullJob(), bareJob()})) << spelling.constData();
    }
    write(test::storedFixture("queue.json"));
    EXPECT_EQ(store().load(), (QList{fullJob(), bareJob()}));
    store().save(store().load());
    EXPECT_EQ(stored().toStdString(), storedQueue);
}

TEST_F(LocalQueueTest, TakesEverySpellingOfNumbers) {
    const auto expectSame = [&](const char* number, const QByteArrayList& spellings) {
        for (const QByteArray& spelling : spellings) {
            write(QByteArray(storedQueue).replace(number, spelling));
            EXPECT_EQ(store().load(), (QList{fullJob(), bareJob()})) << spelling.constData();
        }
    };
    expectSame("\"schemaVersion\": 1,", {"\"schemaVersion\": 1.0,", "\"schemaVersion\": 1e0,"});
    expectSame(": 10000,", {": 10000.0,", ": 1e4,", ": 1E+04,"});
    expectSame("700000000.25", {"7.0000000025E+8", "70000000025e-2", "700000000.2500000000000001"});
    write(QByteArray(storedQueue).replace("-0.5", "-0"));
    EXPECT_EQ(store().load().last().createdAt.secondsSince2001, 0.0);
    for (const char* spelling : {"NaN", "Infinity", "1e999", "-1e999", "0x1", "1.", ".5"}) {
        EXPECT_TRUE(
            loadingFailure(QByteArray(storedQueue).replace("-0.5", spelling)).starts_with("Not valid JSON (at byte "))
            << spelling;
    }
}

TEST_F(LocalQueueTest, TakesTheLastOfKeysThatAreThereTwiceAndIgnoresUnknownOnes) {
    write(QByteArray(storedQueue)
              .replace("\"printerName\"", R"("printerName": null, "later": [{"id": 1}], "printerName")"));
    EXPECT_EQ(store().load(), (QList{fullJob(), bareJob()}));
}

TEST_F(LocalQueueTest, TakesIdsInLowerCaseAndWritesThemInUpperCase) {
    write(QByteArray(storedQueue)
              .replace("9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4", "9b2f4e1c-0d3a-4b5c-8d6e-7f8091a2b3c4"));
    EXPECT_EQ(store().load(), (QList{fullJob(), bareJob()}));
    store().save(store().load());
    EXPECT_EQ(stored().toStdString(), storedQueue);
}

TEST_F(LocalQueueTest, IsUnreadableWhereverItIsCut) {
    const QByteArray whole(storedQueue);
    for (int percent = 0; percent < 100; percent += 5) {
        const QByteArray part = whole.first(whole.size() * percent / 100);
        EXPECT_TRUE(loadingFailure(part).starts_with("Not valid JSON (at byte ")) << percent;
    }
}

TEST_F(LocalQueueTest, FailsForWhatIsNoReadableFile) {
    ASSERT_EQ(::mkfifo(file().toUtf8().constData(), 0600), 0);
    EXPECT_THROW(static_cast<void>(store().load()), platform::FileSystemError);
    EXPECT_THROW(store().save({}), platform::FileSystemError);
    ASSERT_TRUE(QFile::remove(file()));
    ASSERT_TRUE(QDir().mkdir(file()));
    EXPECT_THROW(static_cast<void>(store().load()), platform::FileSystemError);
    EXPECT_THROW(store().save({}), platform::FileSystemError);
    EXPECT_TRUE(QFileInfo(file()).isDir());
}

TEST_F(LocalQueueTest, StaysAsItWasWhenAJobCannotBeWritten) {
    store().save({bareJob()});
    const QByteArray before = stored();
    StagedJob job = fullJob();
    job.createdAt = {std::nan("")};
    EXPECT_EQ(failureOf([&] { store().save({bareJob(), job}); }), "createdAt: JSON cannot hold this number.");
    job = fullJob();
    job.rollLayout->widthInches = 70.0;
    EXPECT_THROW(store().save({job}), platform::JsonInvalidNumber);
    job = fullJob();
    job.settings.widthMM = std::numeric_limits<double>::infinity();
    EXPECT_THROW(store().save({job}), platform::JsonInvalidNumber);
    EXPECT_EQ(stored(), before);
    EXPECT_EQ(folder_.names(), QStringList{QStringLiteral("queue.json")});
}

TEST_F(LocalQueueTest, StaysAsItWasWhenItCannotBeWritten) {
    store().save({bareJob()});
    const QByteArray before = stored();
    const QByteArray answer = test::inChildProcess([&]() -> QByteArray {
        return test::limitFileSize(100) ? QByteArray::fromStdString(failureOf([&] { store().save({fullJob()}); }))
                                        : QByteArray("no limit");
    });
    EXPECT_EQ(answer, file().toUtf8() + ": File too large");
    EXPECT_EQ(stored(), before);
    EXPECT_EQ(folder_.names(), QStringList{QStringLiteral("queue.json")});
}

// Removing

TEST_F(JobRemoval, SavesTheOthersAndDeletesThePDF) {
    const QString pdf = writePDF(fullJob());
    const QString other = writePDF(bareJob());
    store().save({fullJob(), bareJob()});
    EXPECT_TRUE(store().remove(fullJob(), {bareJob()}));
    EXPECT_FALSE(QFileInfo::exists(pdf));
    EXPECT_TRUE(QFileInfo::exists(other));
    EXPECT_EQ(store().load(), QList{bareJob()});
}

TEST_F(JobRemoval, IsDoneIfThePDFIsGoneAlready) {
    store().save({fullJob()});
    EXPECT_TRUE(store().remove(fullJob(), {}));
    EXPECT_EQ(stored(), "[\n]\n");
    EXPECT_TRUE(store().remove(fullJob(), {})) << "and once more";
}

TEST_F(JobRemoval, IsHalfDoneIfThePDFCannotBeDeleted) {
    ASSERT_TRUE(QDir(folder_.path()).mkpath(fullJob().pdfFileName() + QStringLiteral("/below")));
    store().save({fullJob(), bareJob()});
    EXPECT_FALSE(store().remove(fullJob(), {bareJob()}));
    EXPECT_EQ(store().load(), QList{bareJob()});
    EXPECT_TRUE(QFileInfo(folder_.path(fullJob().pdfFileName())).isDir());
}

TEST_F(JobRemoval, LeavesThePDFIfTheListCannotBeSaved) {
    const QString pdf = writePDF(fullJob());
    store().save({fullJob()});
    StagedJob bad = bareJob();
    bad.createdAt = {std::nan("")};
    EXPECT_THROW(static_cast<void>(store().remove(fullJob(), {bad})), platform::JsonInvalidNumber);
    EXPECT_TRUE(QFileInfo::exists(pdf));
    EXPECT_EQ(store().load(), QList{fullJob()});
    ASSERT_TRUE(QFile::remove(file()));
    ASSERT_TRUE(QDir().mkdir(file()));
    EXPECT_THROW(static_cast<void>(store().remove(fullJob(), {})), platform::FileSystemError);
    EXPECT_TRUE(QFileInfo::exists(pdf));
}

TEST_F(JobRemoval, OfALinkLeavesWhatItLeadsTo) {
    const QString real = folder_.write(QStringLiteral("real.pdf"), "%PDF-1.7");
    ASSERT_TRUE(QFile::link(real, folder_.path(fullJob().pdfFileName())));
    EXPECT_TRUE(store().remove(fullJob(), {}));
    EXPECT_TRUE(QFileInfo::exists(real));
    EXPECT_FALSE(QFileInfo(folder_.path(fullJob().pdfFileName())).isSymLink());
}

TEST_F(JobRemoval, SavesTheListAsItIsGiven) {
    const QString pdf = writePDF(fullJob());
    EXPECT_TRUE(store().remove(fullJob(), {fullJob()}));
    EXPECT_EQ(store().load(), QList{fullJob()});
    EXPECT_FALSE(QFileInfo::exists(pdf));
}

// Exporting a PDF

TEST_F(JobExport, CopiesThePDFAndTellsHowFarItHasCome) {
    const StagedJob job = bareJob();
    const QByteArray pdf(5 << 19, 'x'); // two pieces and a half
    folder_.write(job.pdfFileName(), pdf);
    const TemporaryFolder other;
    const QString to = other.write(QStringLiteral("copy.pdf"), "old");
    QList<double> fractions;
    store().exportPDF(job, QUrl::fromLocalFile(to), [&](double fraction) { fractions.append(fraction); });
    EXPECT_EQ(TemporaryFolder::read(to), pdf);
    EXPECT_EQ(fractions, (QList<double>{0.4, 0.8, 1.0}));
    EXPECT_EQ(other.names(), QStringList{QStringLiteral("copy.pdf")});
}

TEST_F(JobExport, LeavesTheDestinationWhenItIsStopped) {
    const StagedJob job = bareJob();
    folder_.write(job.pdfFileName(), QByteArray(5 << 19, 'x'));
    const TemporaryFolder other;
    const QString to = other.write(QStringLiteral("copy.pdf"), "old");
    std::stop_source stop;
    const auto stopping = [&](double) { stop.request_stop(); };
    EXPECT_THROW(store().exportPDF(job, QUrl::fromLocalFile(to), stopping, stop.get_token()), platform::Interrupted);
    EXPECT_EQ(TemporaryFolder::read(to), "old");
    EXPECT_EQ(other.names(), QStringList{QStringLiteral("copy.pdf")});
}

TEST_F(JobExport, LeavesTheDestinationWhenThePDFBecomesShorter) {
    const StagedJob job = bareJob();
    const QString pdf = folder_.write(job.pdfFileName(), QByteArray(5 << 19, 'x'));
    const TemporaryFolder other;
    const QString to = other.write(QStringLiteral("copy.pdf"), "old");
    const auto shortening = [&](double) { ASSERT_TRUE(QFile::resize(pdf, 1 << 20)); };
    EXPECT_EQ(failureOf([&] { store().exportPDF(job, QUrl::fromLocalFile(to), shortening); }),
              pdf.toStdString() + ": Input/output error");
    EXPECT_EQ(TemporaryFolder::read(to), "old");
    EXPECT_EQ(other.names(), QStringList{QStringLiteral("copy.pdf")});
}

} // namespace orvex
