#include "Stores/PrintJournal.h"

#include "Files/FileSystemError.h"
#include "InChinese.h"
#include "Json/JsonError.h"
#include "OrvexError.h"
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

constexpr auto storedJournal = R"([
    {
        "artwork": "\/roll\/A 画.tif",
        "colorMode": "ICC conversion, relative",
        "createdAt": 700000000.25,
        "iccSHA256": "0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef",
        "id": "9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4",
        "media": "Canvas",
        "note": "left edge\n\"nozzle 1\/2\"",
        "preset": "Canvas · 60 in",
        "result": "局部偏紫",
        "sequenceNumber": 3
    },
    {
        "artwork": "",
        "colorMode": "",
        "createdAt": -0.5,
        "id": "00000001-0000-0000-0000-000000000000",
        "media": "",
        "note": "",
        "preset": "",
        "result": "颜色正常",
        "sequenceNumber": 2
    }
]
)";

PrintObservation purple() {
    return {.id = QUuid::fromString(u"9b2f4e1c-0d3a-4b5c-8d6e-7f8091a2b3c4"),
            .createdAt = {700000000.25},
            .sequenceNumber = 3,
            .result = PrintObservationResult::purple,
            .note = QStringLiteral("left edge\n\"nozzle 1/2\""),
            .artwork = QStringLiteral("/roll/A 画.tif"),
            .media = QStringLiteral("Canvas"),
            .preset = QStringLiteral("Canvas · 60 in"),
            .colorMode = QStringLiteral("ICC conversion, relative"),
            .iccSHA256 = QStringLiteral("0123456789abcdef").repeated(4)};
}

PrintObservation normal() {
    PrintObservation observation;
    observation.id = QUuid(1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    observation.createdAt = {-0.5};
    observation.sequenceNumber = 2;
    return observation;
}

class PrintJournalTest : public ::testing::Test {
protected:
    PrintJournalStore store() const { return PrintJournalStore(QUrl::fromLocalFile(folder_.path())); }

    QString file() const { return folder_.path(QStringLiteral("print-observations.json")); }

    void write(const QByteArray& bytes) const { folder_.write(QStringLiteral("print-observations.json"), bytes); }

    QByteArray stored() const { return TemporaryFolder::read(file()); }

    /// What loading a file of these bytes fails with. Appending must fail likewise, and the file must stay.
    std::string loadingFailure(const QByteArray& bytes) const {
        write(bytes);
        const std::string loading = failureOf([&] { static_cast<void>(store().load()); });
        const std::string appending = failureOf([&] { store().append(normal()); });
        if (loading != "(none)") {
            EXPECT_EQ(appending, loading);
            EXPECT_EQ(stored(), bytes);
            EXPECT_EQ(folder_.names(), QStringList{QStringLiteral("print-observations.json")});
        }
        return loading;
    }

    TemporaryFolder folder_;
};

} // namespace

TEST(PrintObservationResult, HasThreeCasesInOrder) {
    EXPECT_EQ(allPrintObservationResults, (std::array{PrintObservationResult::normal, PrintObservationResult::purple,
                                                      PrintObservationResult::other}));
}

TEST(PrintObservationResult, IsStoredInChineseInEveryLanguage) {
    const auto texts = [] {
        QStringList all;
        for (const auto each : allPrintObservationResults) {
            all.append(rawValue(each));
            EXPECT_EQ(printObservationResult(rawValue(each)), each);
        }
        return all;
    };
    const QStringList expected{QStringLiteral("颜色正常"), QStringLiteral("局部偏紫"), QStringLiteral("其他异常")};
    EXPECT_EQ(texts(), expected);
    const test::InChinese chinese;
    EXPECT_EQ(texts(), expected);
}

TEST(PrintObservationResult, IsNoneForAnyOtherText) {
    for (const char* other : {"", "正常", "颜色正常 ", "Color normal", "normal", "purple", "顏色正常"}) {
        EXPECT_EQ(printObservationResult(QString::fromUtf8(other)), std::nullopt) << other;
    }
}

TEST(PrintObservationResult, IsShownInTheCurrentLanguage) {
    EXPECT_EQ(label(PrintObservationResult::normal), QStringLiteral("Color normal"));
    EXPECT_EQ(label(PrintObservationResult::purple), QStringLiteral("Local purple shift"));
    EXPECT_EQ(label(PrintObservationResult::other), QStringLiteral("Other issue"));
    const test::InChinese chinese;
    EXPECT_EQ(label(PrintObservationResult::normal), QStringLiteral("颜色正常"));
    EXPECT_EQ(label(PrintObservationResult::purple), QStringLiteral("局部偏紫"));
    EXPECT_EQ(label(PrintObservationResult::other), QStringLiteral("其他异常"));
}

TEST(PrintObservation, IsMadeWithAnIdOfItsOwnAtTheCurrentTime) {
    const double before = platform::Timestamp::now().secondsSince2001;
    const PrintObservation first;
    const PrintObservation second;
    EXPECT_FALSE(first.id.isNull());
    EXPECT_NE(first.id, second.id);
    EXPECT_GE(first.createdAt.secondsSince2001, before);
    EXPECT_LE(second.createdAt.secondsSince2001, platform::Timestamp::now().secondsSince2001);
}

TEST_F(PrintJournalTest, IsEmptyInAFreshFolderAndMakesNoFile) {
    EXPECT_EQ(store().load(), QList<PrintObservation>());
    EXPECT_EQ(folder_.names(), QStringList());
}

TEST_F(PrintJournalTest, MakesItsFolder) {
    const QUrl directory = QUrl::fromLocalFile(folder_.path(QStringLiteral("a/b 画")));
    EXPECT_EQ(PrintJournalStore(directory).directory(), directory);
    EXPECT_TRUE(QFileInfo(folder_.path(QStringLiteral("a/b 画"))).isDir());
}

TEST_F(PrintJournalTest, LivesInTheApplicationFolderByDefault) {
    const QByteArray place = test::inChildProcess([&] {
        qputenv("XDG_DATA_HOME", folder_.path().toUtf8());
        const PrintJournalStore store;
        store.append(normal());
        return store.directory().toLocalFile().toUtf8();
    });
    EXPECT_EQ(QString::fromUtf8(place), folder_.path(QStringLiteral("ORVEX")));
    EXPECT_TRUE(QFileInfo(folder_.path(QStringLiteral("ORVEX/print-observations.json"))).isFile());
}

TEST_F(PrintJournalTest, FailsWhereNoFolderCanBe) {
    const QString file = folder_.write(QStringLiteral("file"), "");
    EXPECT_THROW(PrintJournalStore(QUrl::fromLocalFile(file)), platform::FileSystemError);
    EXPECT_THROW(PrintJournalStore{QUrl()}, platform::FileSystemError);
}

TEST_F(PrintJournalTest, BeginsWithAnArrayOfOne) {
    EXPECT_EQ(store().append(normal()), QList{normal()});
    EXPECT_EQ(test::tree(stored()).toArray().size(), 1);
    EXPECT_EQ(store().load(), QList{normal()});
}

TEST_F(PrintJournalTest, IsStoredToTheByte) {
    store().append(normal());
    EXPECT_EQ(store().append(purple()), (QList{purple(), normal()}));
    EXPECT_EQ(stored().toStdString(), storedJournal);
}

TEST_F(PrintJournalTest, IsStoredAlikeInChinese) {
    const test::InChinese chinese;
    store().append(normal());
    store().append(purple());
    EXPECT_EQ(stored().toStdString(), storedJournal);
}

TEST_F(PrintJournalTest, IsReadAsWritten) {
    write(storedJournal);
    EXPECT_EQ(store().load(), (QList{purple(), normal()}));
}

TEST_F(PrintJournalTest, HasTheTenthOfTenFirst) {
    QList<PrintObservation> returned;
    for (qint64 number = 1; number <= 10; ++number) {
        PrintObservation observation = normal();
        observation.id = QUuid::createUuid();
        observation.sequenceNumber = number;
        returned = store().append(observation);
        EXPECT_EQ(returned.first(), observation);
    }
    EXPECT_EQ(returned.size(), 10);
    EXPECT_EQ(store().load(), returned);
    EXPECT_EQ(returned.first().sequenceNumber, 10);
    EXPECT_EQ(returned.last().sequenceNumber, 1);
}

TEST_F(PrintJournalTest, KeepsAnyOrderAndRepeatedNumbersAndIds) {
    const QList expected{normal(), purple(), normal()};
    write(test::text(QJsonArray{normal().toJson(), purple().toJson(), normal().toJson()}));
    EXPECT_EQ(store().load(), expected);
    EXPECT_EQ(store().append(purple()), (QList{purple()} + expected));
}

TEST_F(PrintJournalTest, IsReadAnewByEveryCall) {
    const PrintJournalStore first = store();
    const PrintJournalStore second = store();
    first.append(normal());
    EXPECT_EQ(second.append(purple()), (QList{purple(), normal()}));
    EXPECT_EQ(first.load(), (QList{purple(), normal()}));
    ASSERT_TRUE(QFile::remove(file()));
    EXPECT_EQ(first.append(normal()), QList{normal()});
}

TEST_F(PrintJournalTest, TakesNoNumberBelowOne) {
    for (const qint64 number : {qint64{0}, qint64{-1}, std::numeric_limits<qint64>::min()}) {
        PrintObservation observation = normal();
        observation.sequenceNumber = number;
        EXPECT_EQ(failureOf([&] { store().append(observation); }), "Enter the physical print sequence number.");
        EXPECT_THROW(store().append(observation), OrvexError);
    }
    EXPECT_EQ(folder_.names(), QStringList());
}

TEST_F(PrintJournalTest, TakesNoNumberBelowOneInChinese) {
    const test::InChinese chinese;
    PrintObservation observation = normal();
    observation.sequenceNumber = 0;
    EXPECT_EQ(failureOf([&] { store().append(observation); }), "请填写实物打印序号。");
}

TEST_F(PrintJournalTest, LooksAtTheNumberBeforeTheFile) {
    write("damaged");
    PrintObservation observation = normal();
    observation.sequenceNumber = 0;
    EXPECT_EQ(failureOf([&] { store().append(observation); }), "Enter the physical print sequence number.");
}

TEST_F(PrintJournalTest, ChecksNothingButTheNumber) {
    PrintObservation observation = normal();
    observation.sequenceNumber = std::numeric_limits<qint64>::max();
    observation.iccSHA256 = QStringLiteral("not a digest");
    observation.note = QString(100'000, u'n');
    EXPECT_EQ(store().append(observation), QList{observation});
    EXPECT_EQ(store().load(), QList{observation});
}

TEST_F(PrintJournalTest, LoadsNumbersThatCouldNotBeAppended) {
    PrintObservation observation = normal();
    observation.sequenceNumber = -7;
    write(test::text(QJsonArray{observation.toJson()}));
    EXPECT_EQ(store().load(), QList{observation});
}

TEST_F(PrintJournalTest, TakesNoMomentThatJsonLacks) {
    write(storedJournal);
    PrintObservation observation = normal();
    observation.createdAt = {std::nan("")};
    EXPECT_THROW(store().append(observation), platform::JsonInvalidNumber);
    EXPECT_EQ(stored().toStdString(), storedJournal);
}

TEST_F(PrintJournalTest, IsUnreadableWithAnUnknownResult) {
    const QByteArray json = QByteArray(storedJournal).replace("颜色正常", "正常");
    EXPECT_EQ(loadingFailure(json), "[1].result: Unknown observation result.");
    const test::InChinese chinese;
    EXPECT_EQ(loadingFailure(json), "[1].result：未知的观察结果。");
}

TEST_F(PrintJournalTest, NeedsEveryKeyButTheDigest) {
    test::withoutKeys(test::tree(storedJournal), [&](const QString& place, const QJsonValue& tree) {
        const bool isOptional = place.endsWith(QStringLiteral("iccSHA256"));
        EXPECT_EQ(loadingFailure(test::text(tree)),
                  isOptional ? "(none)" : place.toStdString() + ": The required key is missing.");
    });
}

TEST_F(PrintJournalTest, ReadsAMissingAndANullDigestAsNone) {
    PrintObservation expected = purple();
    expected.iccSHA256.reset();
    QJsonObject json = purple().toJson();
    json[u"iccSHA256"] = QJsonValue::Null;
    write(test::text(QJsonArray{json}));
    EXPECT_EQ(store().load(), QList{expected});
    json.remove(u"iccSHA256");
    write(test::text(QJsonArray{json}));
    EXPECT_EQ(store().load(), QList{expected});
}

TEST_F(PrintJournalTest, NeedsTheTypeOfEveryValue) {
    int changes = 0;
    test::withOtherTypes(test::tree(storedJournal), [&](const QString& place, const QJsonValue& tree) {
        const bool isAbsent = place.endsWith(QStringLiteral("iccSHA256")) && test::valueAt(tree, place).isNull();
        const std::string failure = loadingFailure(test::text(tree));
        ++changes;
        EXPECT_EQ(failure.starts_with(isAbsent ? "(none)" : place.toStdString() + ": "), true) << failure;
    });
    EXPECT_EQ(changes, (2 + 10 + 9) * 5);
}

TEST_F(PrintJournalTest, IsAnArray) {
    EXPECT_EQ(loadingFailure("{}"), "Expected an array.");
    EXPECT_EQ(loadingFailure("[null]"), "[0]: Expected an object.");
    EXPECT_EQ(loadingFailure("[[]]"), "[0]: Expected an object.");
    EXPECT_EQ(loadingFailure(""), "Not valid JSON (at byte 0).");
    EXPECT_EQ(loadingFailure("[]"), "(none)");
}

TEST_F(PrintJournalTest, TakesEverySpellingOfNumbers) {
    for (const char* spelling : {"3", "3.0", "3e0", "30E-1", "0.3e+1"}) {
        write(QByteArray(storedJournal).replace(": 3\n", QByteArray(": ") + spelling + "\n"));
        EXPECT_EQ(store().load().first(), purple()) << spelling;
    }
    for (const char* spelling : {"7.0000000025E8", "700000000.25000", "70000000025e-2"}) {
        write(QByteArray(storedJournal).replace("700000000.25", spelling));
        EXPECT_EQ(store().load().first(), purple()) << spelling;
    }
    write(QByteArray(storedJournal).replace("-0.5", "-0"));
    EXPECT_EQ(store().load().last().createdAt.secondsSince2001, 0.0);
}

TEST_F(PrintJournalTest, TakesNoOtherNumbers) {
    const auto withDate = [](const char* spelling) { return QByteArray(storedJournal).replace("-0.5", spelling); };
    for (const char* spelling : {"NaN", "Infinity", "-Infinity", "1e999", "-1e999", "01", "1.", ".5", "+1", "0x1"}) {
        EXPECT_TRUE(loadingFailure(withDate(spelling)).starts_with("Not valid JSON (at byte ")) << spelling;
    }
    EXPECT_EQ(loadingFailure(withDate("\"NaN\"")), "[1].createdAt: Expected a number.");
    const auto withNumber = [](const char* spelling) {
        return QByteArray(storedJournal).replace(": 3\n", QByteArray(": ") + spelling + "\n");
    };
    for (const char* spelling : {"3.5", "1e19", "9223372036854775808", "1e-9"}) {
        EXPECT_EQ(loadingFailure(withNumber(spelling)), "[0].sequenceNumber: Expected an integer.") << spelling;
    }
}

TEST_F(PrintJournalTest, TakesIdsInEitherCaseAndWritesThemInUpperCase) {
    write(QByteArray(storedJournal)
              .replace("9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4", "9b2f4e1c-0d3a-4b5c-8d6e-7f8091a2b3c4"));
    EXPECT_EQ(store().load().first(), purple());
    store().append(normal());
    EXPECT_TRUE(stored().contains("\"9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4\""));
    EXPECT_EQ(loadingFailure(QByteArray(storedJournal).replace("9B2F4E1C-", "{9B2F4E1C-")), "[0].id: Expected a UUID.");
}

TEST_F(PrintJournalTest, TakesTheLastOfKeysThatAreThereTwiceAndIgnoresUnknownOnes) {
    write(QByteArray(storedJournal)
              .replace("\"sequenceNumber\": 3",
                       "\"sequenceNumber\": 9, \"sequenceNumber\": 3, \"later\": {\"x\": [null]}"));
    EXPECT_EQ(store().load(), (QList{purple(), normal()}));
}

TEST_F(PrintJournalTest, IsReadInTheSpellingsOfOtherWriters) {
    for (const QByteArray& spelling : test::spellingsOf(storedJournal)) {
        write(spelling);
        EXPECT_EQ(store().load(), (QList{purple(), normal()})) << spelling.constData();
    }
    write(test::storedFixture("print-observations.json"));
    EXPECT_EQ(store().load(), (QList{purple(), normal()}));
    store().append(normal());
    EXPECT_EQ(store().load(), (QList{normal(), purple(), normal()}));
}

TEST_F(PrintJournalTest, IsUnreadableWhereverItIsCut) {
    const QByteArray whole(storedJournal);
    for (int percent = 0; percent < 100; percent += 5) {
        const QByteArray part = whole.first(whole.size() * percent / 100);
        EXPECT_TRUE(loadingFailure(part).starts_with("Not valid JSON (at byte ")) << percent;
    }
}

TEST_F(PrintJournalTest, IsUnreadableWithBytesThatAreNoText) {
    EXPECT_TRUE(loadingFailure(QByteArray(storedJournal).replace("Canvas\",", "Canv\xFFs\","))
                    .starts_with("Not valid JSON (at byte "));
}

TEST_F(PrintJournalTest, IsNotReplacedIfItIsNoRegularFile) {
    ASSERT_EQ(::mkfifo(file().toUtf8().constData(), 0600), 0);
    EXPECT_NE(failureOf([&] { static_cast<void>(store().load()); }), "(none)");
    EXPECT_NE(failureOf([&] { store().append(normal()); }), "(none)");
    ASSERT_TRUE(QFile::remove(file()));
    ASSERT_TRUE(QDir().mkdir(file()));
    EXPECT_THROW(static_cast<void>(store().load()), platform::FileSystemError);
    EXPECT_THROW(store().append(normal()), platform::FileSystemError);
    EXPECT_TRUE(QFileInfo(file()).isDir());
}

TEST_F(PrintJournalTest, StaysAsItWasWhenItCannotBeWritten) {
    write(storedJournal);
    ASSERT_EQ(::chmod(folder_.path().toUtf8().constData(), 0555), 0);
    ASSERT_EQ(::chmod(file().toUtf8().constData(), 0644), 0);
    const QByteArray answer = test::inChildProcess([&]() -> QByteArray {
        return test::becomeOrdinaryUser() ? QByteArray::fromStdString(failureOf([&] { store().append(normal()); }))
                                          : QByteArray("still root");
    });
    ASSERT_EQ(::chmod(folder_.path().toUtf8().constData(), 0700), 0);
    EXPECT_EQ(answer, file().toUtf8() + ": Permission denied");
    EXPECT_EQ(stored().toStdString(), storedJournal);
    EXPECT_EQ(folder_.names(), QStringList{QStringLiteral("print-observations.json")});
}

TEST_F(PrintJournalTest, HoldsManyObservations) {
    QJsonArray many;
    for (int number = 1; number <= 1000; ++number) {
        PrintObservation observation = normal();
        observation.sequenceNumber = number;
        many.append(observation.toJson());
    }
    write(test::text(many));
    const auto returned = store().append(purple());
    ASSERT_EQ(returned.size(), 1001);
    EXPECT_EQ(returned[0], purple());
    EXPECT_EQ(returned[1000].sequenceNumber, 1000);
    EXPECT_EQ(store().load(), returned);
    EXPECT_EQ(stored(), platform::writeJson(test::tree(stored()), platform::JsonForm::prettyEscapedSlashes));
}

} // namespace orvex
