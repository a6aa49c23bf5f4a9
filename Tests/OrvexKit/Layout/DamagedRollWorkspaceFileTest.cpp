#include "ChangedTrees.h"
#include "Json/JsonError.h"
#include "Layout/RollWorkspaceFile.h"
#include "LayoutFixtures.h"
#include "MutatedBytes.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

using test::artworkAt;

constexpr auto badFile = "The layout file version or data is invalid. The original file has been retained.";

/// A file of which nothing is absent.
RollWorkspaceFile wholeFile() {
    RollWorkspaceFile file;
    file.layout = RollLayout({artworkAt(1.5, 2, 10, 20, 1), artworkAt(20, 0, 10, 20, 2)}, 44.0);
    file.selection = test::id(2);
    for (const RollArtwork& item : file.layout.items) {
        file.sizingDescriptions.insert(platform::uuidText(item.id), QStringLiteral("24 × 16 in"));
    }
    file.gapInches = 0.25;
    return file;
}

QJsonValue wholeTree() {
    return wholeFile().toJson();
}

/// The message that a file is refused with, or "(none)"; one that is not is written so that it reads the same.
std::string refusal(const QByteArray& json) {
    try {
        const RollWorkspaceFile file = RollWorkspaceFile::decode(json);
        file.validate();
        EXPECT_EQ(RollWorkspaceFile::decode(file.encode()), file);
    } catch (const Failure& failure) {
        EXPECT_FALSE(failure.message().isEmpty());
        return failure.message().toStdString();
    }
    return "(none)";
}

TEST(DamagedRollWorkspaceFile, IsReadUndamaged) {
    EXPECT_EQ(refusal(wholeFile().encode()), "(none)");
    EXPECT_EQ(refusal(test::text(wholeTree())), "(none)");
}

TEST(DamagedRollWorkspaceFile, NeedsEveryKeyOfEveryRecord) {
    // A file without a width is from before there was a choice.
    QStringList optional{QStringLiteral("selection"), QStringLiteral("layout.widthInches")};
    for (const QString& key : wholeFile().sizingDescriptions.keys()) {
        optional.append(QStringLiteral("sizingDescriptions.") + key);
    }
    int keys = 0;
    test::withoutKeys(wholeTree(), [&](const QString& place, const QJsonValue& tree) {
        ++keys;
        EXPECT_EQ(refusal(test::text(tree)),
                  optional.contains(place) ? "(none)" : place.toStdString() + ": The required key is missing.");
    });
    EXPECT_EQ(keys, 5 + 3 + 2 * 11 + 2);
}

TEST(DamagedRollWorkspaceFile, NeedsTheTypeOfEveryValue) {
    test::withOtherTypes(wholeTree(), [](const QString& place, const QJsonValue& tree) {
        const std::string found = refusal(test::text(tree));
        const bool isAbsent = place == u"selection" && test::valueAt(tree, place).isNull();
        EXPECT_TRUE(isAbsent ? found == "(none)" : found.starts_with(place.toStdString() + ": Expected "))
            << place.toStdString() << ": " << found;
    });
}

TEST(DamagedRollWorkspaceFile, HoldsNoNumberThatIsNone) {
    int numbers = 0;
    test::withOtherNumbers(
        wholeTree(), {"NaN", "nan", "Infinity", "-Infinity", "1e999", "-1e999", "0x10", "01", "1.", ".5", "+1", "--1"},
        [&](const QString& place, const QByteArray& number, const QByteArray& json) {
            ++numbers;
            EXPECT_NE(refusal(json), "(none)") << place.toStdString() << ' ' << number.toStdString();
        });
    EXPECT_EQ(numbers, 12 * (2 + 2 + 2 * 8));
}

TEST(DamagedRollWorkspaceFile, TakesANegativeZeroForZeroWhereZeroWillDo) {
    QStringList accepted;
    test::withOtherNumbers(wholeTree(), {"-0", "-0.0"},
                           [&](const QString& place, const QByteArray&, const QByteArray& json) {
                               if (refusal(json) == "(none)" && !accepted.contains(place)) {
                                   accepted.append(place);
                               }
                           });
    EXPECT_EQ(accepted,
              (QStringList{QStringLiteral("gapInches"), QStringLiteral("layout.items[0].rotationQuarterTurns"),
                           QStringLiteral("layout.items[0].xInches"), QStringLiteral("layout.items[0].yInches"),
                           QStringLiteral("layout.items[1].rotationQuarterTurns"),
                           QStringLiteral("layout.items[1].xInches"), QStringLiteral("layout.items[1].yInches")}));
}

TEST(DamagedRollWorkspaceFile, HoldsNoIntegerThatIsNone) {
    for (const char* key : {"pixelWidth", "pixelHeight", "rotationQuarterTurns"}) {
        const QString place = QStringLiteral("layout.items[0].") + QString::fromLatin1(key);
        int count = 0;
        test::withOtherNumbers(wholeTree(), {"1.5", "1e300", "9223372036854775808"},
                               [&](const QString& at, const QByteArray&, const QByteArray& json) {
                                   if (at == place) {
                                       ++count;
                                       EXPECT_EQ(refusal(json), place.toStdString() + ": Expected an integer.");
                                   }
                               });
        EXPECT_EQ(count, 3);
    }
}

TEST(DamagedRollWorkspaceFile, HoldsNoIdTwice) {
    const QByteArray first = test::id(1).toString(QUuid::WithoutBraces).toUtf8().toUpper();
    const QByteArray second = test::id(2).toString(QUuid::WithoutBraces).toUtf8().toUpper();
    const QByteArray json = test::text(wholeTree());
    ASSERT_TRUE(json.contains("\"id\":\"" + second));
    for (const QByteArray& again : {first, first.toLower()}) {
        EXPECT_EQ(refusal(QByteArray(json).replace("\"id\":\"" + second, "\"id\":\"" + again)), badFile);
    }
}

TEST(DamagedRollWorkspaceFile, HasItsIdsInLettersOfEitherCase) {
    RollWorkspaceFile file = wholeFile();
    file.layout.items[0].id = QUuid::fromString(u"9b2f4e1c-0d3a-4b5c-8d6e-7f8091a2b3c4");
    file.selection = file.layout.items[0].id;
    file.sizingDescriptions.clear();
    const QByteArray json = file.encode();
    EXPECT_EQ(json.count("9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4"), 2);
    const QByteArray lower =
        QByteArray(json).replace("9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4", "9b2f4e1c-0d3a-4b5c-8d6e-7f8091a2b3c4");
    EXPECT_EQ(RollWorkspaceFile::decode(lower), file);
    EXPECT_EQ(RollWorkspaceFile::decode(lower).encode(), json);
}

TEST(DamagedRollWorkspaceFile, IsRefusedCutAtEveryTwentieth) {
    for (const QByteArray& json : {wholeFile().encode(), test::text(wholeTree())}) {
        for (qsizetype part = 0; part < 20; ++part) {
            EXPECT_THROW((void)RollWorkspaceFile::decode(json.first(json.size() * part / 20)),
                         platform::JsonSyntaxError)
                << part;
        }
        EXPECT_THROW((void)RollWorkspaceFile::decode(json.trimmed().chopped(1)), platform::JsonSyntaxError);
    }
}

TEST(DamagedRollWorkspaceFile, IsRefusedOrReadWhateverItsBytes) {
    const QByteArray json = wholeFile().encode();
    test::Mutations mutations(20260105);
    int refused = 0;
    constexpr int rounds = 10'000;
    for (int round = 0; round < rounds; ++round) {
        refused += refusal(mutations.ofJson(json)) == "(none)" ? 0 : 1;
    }
    constexpr int some = 500; // so that both outcomes are tried
    EXPECT_GT(refused, some);
    EXPECT_GT(rounds - refused, some);
}

} // namespace
} // namespace orvex
