#include "Color/IccProfile.h"
#include "IccFixtures.h"
#include "Profiles.h"

#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <ostream>

namespace orvex::platform {

namespace icc = test::icc;

namespace {

const QByteArray& dataOf(QByteArrayView name) {
    static const QByteArray rgb = icc::saved(icc::rgb(1.8));
    static const QByteArray gray = icc::saved(icc::gray(2.2));
    static const QByteArray inks = icc::saved(icc::cmyk());
    static const QByteArray floats = icc::saved(icc::floatTables());
    static const QByteArray link = icc::saved(icc::deviceLink());
    return name == "rgb" ? rgb : name == "gray" ? gray : name == "inks" ? inks : name == "floats" ? floats : link;
}

bool isUsable(const QByteArray& data) {
    return IccProfile::fromData(data).has_value();
}

struct ColorTag {
    const char* profile;
    const char* tag;

    friend std::ostream& operator<<(std::ostream& stream, const ColorTag& each) {
        return stream << each.profile << ' ' << each.tag;
    }
};

class IccColorTag : public testing::TestWithParam<ColorTag> {
protected:
    [[nodiscard]] QByteArray withOffset(quint32 offset) const { return icc::patched(data_, entry_ + 4, offset); }

    [[nodiscard]] QByteArray withSize(quint32 size) const { return icc::patched(data_, entry_ + 8, size); }

    const QByteArray data_ = dataOf(GetParam().profile);
    const qsizetype entry_ = icc::entryOf(data_, GetParam().tag);
    const quint32 offset_ = icc::numberAt(data_, entry_ + 4);
    const quint32 size_ = icc::numberAt(data_, entry_ + 8);
    const quint32 end_ = static_cast<quint32>(data_.size());
};

class IccTable : public IccColorTag {
protected:
    /// The profile with a field of the table, counted from the table's beginning, that has another value.
    template <typename Number>
    [[nodiscard]] QByteArray withField(qsizetype field, Number value) const {
        return icc::patched(data_, offset_ + field, value);
    }
};

/// A profile whose table D2B0 is that of `floats` so many times over, all from the same bytes, and states `statedSize`
/// as the size of each, or what is true.
QByteArray withSharedElements(quint32 count, std::optional<quint32> statedSize = std::nullopt) {
    const QByteArray& data = dataOf("floats");
    const qsizetype table = icc::contentOf(data, "D2B0");
    const quint32 size = icc::numberAt(data, table + 20); // by the engine's count, without type and reserved bytes
    const QByteArray element = data.sliced(table + icc::numberAt(data, table + 16), size + 8);
    const qsizetype headBytes = 16 + 8 * qsizetype{count};
    QByteArray shared = icc::patched(data.sliced(table, 16).leftJustified(headBytes, '\0'), 12, count);
    for (qsizetype entry = 16; entry < headBytes; entry += 8) {
        shared = icc::patched(icc::patched(shared, entry, static_cast<quint32>(headBytes)), entry + 4,
                              statedSize.value_or(size));
    }
    shared += element;
    QByteArray made = data + shared;
    made = icc::patched(made, 0, static_cast<quint32>(made.size()));
    const qsizetype entry = icc::entryOf(data, "D2B0");
    made = icc::patched(made, entry + 4, static_cast<quint32>(data.size()));
    return icc::patched(made, entry + 8, static_cast<quint32>(shared.size()));
}

std::string nameOf(const testing::TestParamInfo<ColorTag>& info) {
    return std::string(info.param.profile) + '_' + info.param.tag;
}

} // namespace

TEST_P(IccColorTag, IsReadWhereItIsSound) {
    EXPECT_TRUE(isUsable(data_));
}

TEST_P(IccColorTag, MustBeginWithinTheProfile) {
    for (const quint32 offset : {end_, end_ + 1, end_ - 4, quint32{0x7FFFFFFF}, quint32{0xFFFFFFF0}}) {
        EXPECT_FALSE(isUsable(withOffset(offset))) << offset;
    }
}

TEST_P(IccColorTag, MustEndWithinTheProfile) {
    for (const quint32 size : {end_ - offset_ + 1, end_, quint32{0x7FFFFFFF}, quint32{0xFFFFFFFF}}) {
        EXPECT_FALSE(isUsable(withSize(size))) << size;
    }
}

TEST_P(IccColorTag, MustNotBeginBeforeTheDirectoryEnds) {
    for (const quint32 offset : {0U, 4U, 128U, 132U, 143U}) {
        EXPECT_FALSE(isUsable(withOffset(offset))) << offset;
    }
}

TEST_P(IccColorTag, MustBeOfATypeThatItMayHave) {
    for (const char* type : {"XXXX", "text", "\0\0\0\0"}) {
        EXPECT_FALSE(isUsable(QByteArray(data_).replace(offset_, 4, QByteArray(type, 4)))) << type;
    }
}

TEST_P(IccColorTag, MustHaveAllBytesOfItsContent) {
    for (const quint32 size : {0U, 1U, 7U, 8U, 11U, size_ - 4}) {
        EXPECT_FALSE(isUsable(withSize(size))) << size;
    }
}

TEST_P(IccColorTag, IsNotSavedByACutOfTheProfileThatTheHeaderKnowsOf) {
    const quint32 cut = offset_ + size_ - 4;
    EXPECT_FALSE(isUsable(icc::patched(data_.first(cut), 0, cut)));
}

INSTANTIATE_TEST_SUITE_P(OfMatrices, IccColorTag,
                         testing::Values(ColorTag{"rgb", "rTRC"}, ColorTag{"rgb", "gTRC"}, ColorTag{"rgb", "bTRC"},
                                         ColorTag{"rgb", "rXYZ"}, ColorTag{"rgb", "gXYZ"}, ColorTag{"rgb", "bXYZ"},
                                         ColorTag{"rgb", "wtpt"}, ColorTag{"rgb", "chad"}, ColorTag{"gray", "kTRC"},
                                         ColorTag{"gray", "wtpt"}, ColorTag{"inks", "wtpt"}),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(OfTables, IccColorTag,
                         testing::Values(ColorTag{"inks", "A2B0"}, ColorTag{"inks", "A2B1"}, ColorTag{"inks", "A2B2"},
                                         ColorTag{"inks", "B2A0"}, ColorTag{"inks", "B2A1"}, ColorTag{"inks", "B2A2"},
                                         ColorTag{"link", "A2B0"}),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(OfFloatTables, IccColorTag,
                         testing::Values(ColorTag{"floats", "D2B0"}, ColorTag{"floats", "D2B1"},
                                         ColorTag{"floats", "D2B2"}, ColorTag{"floats", "D2B3"},
                                         ColorTag{"floats", "B2D0"}, ColorTag{"floats", "B2D1"},
                                         ColorTag{"floats", "B2D2"}, ColorTag{"floats", "B2D3"}),
                         nameOf);

// Tables of the type "mft2" (ICC.1, 10.10): inputs at 8, outputs at 9, points of the grid at 10, then the entries of
// the curves before it at 48, behind it at 50.

TEST_P(IccTable, MustHaveAGridThatFillsItsBytes) {
    for (const auto points : std::to_array<quint8>({0, 1, 10, 33, 255})) {
        EXPECT_FALSE(isUsable(withField(10, points))) << int{points};
    }
}

TEST_P(IccTable, MustHaveCurvesOfAtLeastTwoEntries) {
    for (const qsizetype field : {48, 50}) {
        for (const auto entries : std::to_array<quint16>({1, 255, 4096, 32767, 32768, 65535})) {
            EXPECT_FALSE(isUsable(withField(field, entries))) << field << ' ' << entries;
        }
    }
}

TEST_P(IccTable, MustLeadBetweenTheSpacesOfTheProfile) {
    for (const qsizetype field : {8, 9}) {
        const auto sound = static_cast<quint8>(data_.at(offset_ + field));
        for (const auto channels : std::to_array<quint8>({0, 1, 2, 3, 4, 5, 15, 16, 255})) {
            EXPECT_EQ(isUsable(withField(field, channels)), channels == sound) << field << ' ' << int{channels};
        }
    }
}

INSTANTIATE_TEST_SUITE_P(OfEveryIntent, IccTable,
                         testing::Values(ColorTag{"inks", "A2B0"}, ColorTag{"inks", "A2B1"}, ColorTag{"inks", "A2B2"},
                                         ColorTag{"inks", "B2A0"}, ColorTag{"inks", "B2A1"}, ColorTag{"inks", "B2A2"}),
                         nameOf);

TEST(IccColorTags, OfSoundSampleProfilesAreRead) {
    for (const samples::Bytes* each :
         {&samples::sRgbProfile(), &samples::wideGamutProfile(), &samples::displayP3Profile(), &samples::grayProfile(),
          &samples::pressProfile()}) {
        EXPECT_TRUE(isUsable({reinterpret_cast<const char*>(each->data()), static_cast<qsizetype>(each->size())}));
    }
    EXPECT_TRUE(isUsable(sRgbProfileData()));
}

TEST(IccColorTags, MayShareTheirBytes) {
    QByteArray data = dataOf("inks");
    for (const char* direction : {"A2B", "B2A"}) {
        const QByteArray place = data.sliced(icc::entryOf(data, QByteArray(direction) + '0') + 4, 8);
        data.replace(icc::entryOf(data, QByteArray(direction) + '1') + 4, 8, place);
        data.replace(icc::entryOf(data, QByteArray(direction) + '2') + 4, 8, place);
    }
    EXPECT_TRUE(isUsable(data));
    EXPECT_FALSE(isUsable(data.replace(icc::contentOf(data, "B2A2"), 4, "XXXX")));
}

TEST(IccColorTags, MayShareElementsWithinReason) {
    EXPECT_TRUE(isUsable(withSharedElements(1)));
    EXPECT_TRUE(isUsable(withSharedElements(4)));
    EXPECT_FALSE(isUsable(withSharedElements(1000)));
    EXPECT_TRUE(isUsable(withSharedElements(32, 0)));
    EXPECT_FALSE(isUsable(withSharedElements(33, 0)));
    EXPECT_FALSE(isUsable(withSharedElements(1000, 0)));
    const QByteArray data = withSharedElements(1);
    EXPECT_FALSE(isUsable(icc::patched(data, icc::contentOf(data, "D2B0") + 12, quint32{0xFFFFFFFF})));
}

TEST(IccColorTags, MayBeAbsentWhereTheStandardKnowsWhatStandsIn) {
    for (const char* tag : {"A2B1", "A2B2", "B2A0", "B2A1", "B2A2", "wtpt"}) {
        const QByteArray& data = dataOf("inks");
        EXPECT_TRUE(isUsable(QByteArray(data).replace(icc::entryOf(data, tag), 4, "zzzz"))) << tag;
    }
    for (const char* tag : {"wtpt", "chad"}) {
        const QByteArray& data = dataOf("rgb");
        EXPECT_TRUE(isUsable(QByteArray(data).replace(icc::entryOf(data, tag), 4, "zzzz"))) << tag;
    }
}

TEST(IccColorTags, MayHaveBytesToSpareAndStandAtAnyOffset) {
    const QByteArray& data = dataOf("inks");
    const qsizetype entry = icc::entryOf(data, "wtpt");
    EXPECT_TRUE(isUsable(icc::patched(data, entry + 8, quint32{21})));
    QByteArray moved = data + "odd" + data.sliced(icc::contentOf(data, "wtpt"), 20);
    moved = icc::patched(moved, 0, static_cast<quint32>(moved.size()));
    EXPECT_TRUE(isUsable(icc::patched(moved, entry + 4, static_cast<quint32>(data.size() + 3))));
}

TEST(IccColorTags, AreTheOnlyOnesThatMustBeReadable) {
    const QByteArray& data = dataOf("rgb");
    const qsizetype entry = icc::entryOf(data, "chrm");
    for (const char* tag : {"chrm", "zzzz", "bkpt", "A2B3", "B2A3", "gamt", "lumi"}) {
        const QByteArray renamed = QByteArray(data).replace(entry, 4, tag);
        EXPECT_TRUE(isUsable(QByteArray(renamed).replace(icc::contentOf(data, "chrm"), 4, "XXXX"))) << tag;
        EXPECT_TRUE(isUsable(icc::patched(renamed, entry + 8, quint32{0}))) << tag;
        EXPECT_FALSE(isUsable(icc::patched(renamed, entry + 8, quint32{0x7FFFFFFF}))) << tag;
    }
    for (const char* tag : {"desc", "cprt"}) {
        EXPECT_TRUE(isUsable(QByteArray(data).replace(icc::contentOf(data, tag), 4, "XXXX"))) << tag;
    }
}

} // namespace orvex::platform
