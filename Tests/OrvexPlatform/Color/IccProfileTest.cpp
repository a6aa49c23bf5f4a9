#include "Color/IccProfile.h"

#include "IccFixtures.h"

#include <gtest/gtest.h>

#include <thread>

namespace orvex::platform {

namespace icc = test::icc;

namespace {

constexpr qsizetype sizeLimit = 67'108'864;

QByteArray ordinary() {
    static const QByteArray data = icc::saved(icc::rgb(1.8));
    return data;
}

struct ClassCase {
    const char* name;
    QByteArray data;
    QByteArray profileClass;
    const char* description;
    IccProfile::Space space;
    int components;
};

std::vector<ClassCase> allClasses() {
    using Space = IccProfile::Space;
    return {
        {"display", icc::saved(icc::rgb(1.8)), "mntr", "Test RGB", Space::rgb, 3},
        {"scanner", icc::saved(icc::rgb(1.8, cmsSigInputClass)), "scnr", "Test RGB", Space::rgb, 3},
        {"colour space", icc::saved(icc::rgb(1.8, cmsSigColorSpaceClass)), "spac", "Test RGB", Space::rgb, 3},
        {"gray", icc::saved(icc::gray(2.2)), "mntr", "Test Gray", Space::gray, 1},
        {"printer", icc::saved(icc::cmyk()), "prtr", "Test CMYK", Space::cmyk, 4},
        {"device link", icc::saved(icc::deviceLink()), "link", "Linearization built-in", Space::rgb, 3},
        {"abstract", icc::saved(icc::abstract()), "abst", "BCHS built-in", Space::other, 3},
        {"named colours", icc::saved(icc::namedColor()), "nmcl", "Test Names", Space::rgb, 3},
        {"Lab", icc::saved(icc::lab()), "spac", "Lab identity built-in", Space::other, 3},
    };
}

} // namespace

TEST(IccProfile, OpensProfilesOfEveryClassAndTellsWhatTheyAre) {
    for (const ClassCase& each : allClasses()) {
        SCOPED_TRACE(each.name);
        const auto profile = IccProfile::fromData(each.data);
        ASSERT_TRUE(profile.has_value());
        EXPECT_EQ(profile->data(), each.data);
        EXPECT_EQ(profile->profileClass(), each.profileClass);
        EXPECT_EQ(profile->description(), QString::fromUtf8(each.description));
        EXPECT_EQ(profile->space(), each.space);
        EXPECT_EQ(profile->componentCount(), each.components);
    }
}

TEST(IccProfile, KnowsTheSignatureOnlyInDataThatIsLongEnough) {
    const QByteArray data = ordinary();
    EXPECT_TRUE(hasIccSignature(data));
    EXPECT_TRUE(hasIccSignature(data.first(132)));
    EXPECT_FALSE(hasIccSignature(data.first(131)));
    EXPECT_FALSE(hasIccSignature({}));
    EXPECT_FALSE(hasIccSignature(QByteArray(data).replace(36, 4, "acsP")));
}

TEST(IccProfile, RefusesDataWithoutTheSignature) {
    EXPECT_FALSE(IccProfile::fromData({}));
    EXPECT_FALSE(IccProfile::fromData(ordinary().first(131)));
    EXPECT_FALSE(IccProfile::fromData(ordinary().replace(36, 4, "ACSP")));
}

TEST(IccProfile, HoldsTheSizeFieldAgainstTheData) {
    const QByteArray data = ordinary();
    const auto size = static_cast<quint32>(data.size());
    EXPECT_TRUE(IccProfile::fromData(icc::patched(data, 0, size)));
    EXPECT_FALSE(IccProfile::fromData(icc::patched(data, 0, size + 1)));
    EXPECT_FALSE(IccProfile::fromData(icc::patched(data, 0, quint32{0xFFFFFFFF})));
    EXPECT_FALSE(IccProfile::fromData(icc::patched(data, 0, quint32{131})));
    EXPECT_FALSE(IccProfile::fromData(icc::patched(data, 0, quint32{0})));
    EXPECT_FALSE(IccProfile::fromData(data.first(data.size() - 1)));
}

TEST(IccProfile, RefusesASizeFieldThatLeavesNoRoomForATag) {
    EXPECT_FALSE(IccProfile::fromData(icc::patched(ordinary(), 0, quint32{132})));
}

TEST(IccProfile, PassesBytesBehindTheProfile) {
    const QByteArray data = ordinary() + QByteArray(1000, '\x55');
    const auto profile = IccProfile::fromData(data);
    ASSERT_TRUE(profile);
    EXPECT_EQ(profile->data(), data);
}

TEST(IccProfile, TakesDataOfUpTo64MiB) {
    QByteArray data = ordinary();
    data.resize(sizeLimit, '\0');
    EXPECT_TRUE(IccProfile::fromData(data));
    data.append('\0');
    EXPECT_FALSE(IccProfile::fromData(data));
}

TEST(IccProfile, RefusesAClassOrSpaceThatIsNotAscii) {
    for (qsizetype offset = 12; offset < 24; ++offset) {
        EXPECT_FALSE(IccProfile::fromData(icc::patched(ordinary(), offset, quint8{0x80})));
    }
}

TEST(IccProfile, RefusesProfilesFromWhichNoColorCanBeComputed) {
    const icc::Profile empty(cmsCreateProfilePlaceholder(nullptr));
    cmsSetDeviceClass(empty.get(), cmsSigDisplayClass);
    cmsSetColorSpace(empty.get(), cmsSigRgbData);
    cmsSetPCS(empty.get(), cmsSigXYZData);
    icc::describe(empty, {{"en", "US", L"No tables"}});
    EXPECT_FALSE(IccProfile::fromData(icc::saved(empty)));
    EXPECT_FALSE(IccProfile::fromData(icc::saved(icc::cmyk(cmsSigOutputClass, icc::Tables::fromConnectionOnly))));
    EXPECT_FALSE(IccProfile::fromData(ordinary().replace(16, 4, "CMYK"))); // three curves cannot serve four inks
    EXPECT_FALSE(IccProfile::fromData(ordinary().replace(16, 4, "????")));
    EXPECT_FALSE(IccProfile::fromData(ordinary().replace(20, 4, "RGB ")));
}

TEST(IccProfile, TakesAPrinterProfileThatOnlyLeadsToTheConnectionSpace) {
    EXPECT_TRUE(IccProfile::fromData(icc::saved(icc::cmyk(cmsSigOutputClass, icc::Tables::toConnectionOnly))));
}

TEST(IccProfile, SurvivesCutsAndDamageAnywhere) {
    for (const QByteArray& data : {ordinary(), icc::saved(icc::gray(2.2)), icc::saved(icc::namedColor())}) {
        for (qsizetype size = 0; size < data.size(); size += 7) {
            EXPECT_FALSE(IccProfile::fromData(data.first(size)));
        }
        for (qsizetype offset = 0; offset < data.size(); ++offset) {
            const auto damaged = static_cast<quint8>(~data.at(offset));
            const auto profile = IccProfile::fromData(icc::patched(data, offset, damaged));
            EXPECT_TRUE(!profile || profile->componentCount() > 0);
        }
    }
}

TEST(SRgbProfile, IsAUsableDisplayProfile) {
    const auto profile = IccProfile::fromData(sRgbProfileData());
    ASSERT_TRUE(profile);
    EXPECT_EQ(profile->profileClass(), "mntr");
    EXPECT_EQ(profile->space(), IccProfile::Space::rgb);
    EXPECT_EQ(profile->description(), QStringLiteral("sRGB IEC61966-2.1"));
}

TEST(SRgbProfile, HoldsNothingOfTheMomentOfItsMaking) {
    EXPECT_EQ(sRgbProfileData().sliced(24, 12), QByteArray::fromHex("07ea00010001000000000000"));
    EXPECT_EQ(sRgbProfileData().sliced(84, 16), QByteArray(16, '\0'));
}

TEST(SRgbProfile, IsTheSameObjectForEveryThread) {
    std::array<const QByteArray*, 4> seen{};
    {
        std::vector<std::jthread> threads;
        for (auto& each : seen) {
            threads.emplace_back([&each] { each = &sRgbProfileData(); });
        }
    }
    for (const auto* each : seen) {
        EXPECT_EQ(each, &sRgbProfileData());
    }
}

TEST(AppliedProfile, IsTheFilesOwnIfItFitsThePixels) {
    struct Case {
        const char* name;
        std::optional<QByteArray> data;
        ColorModel model;
        bool applies;
    };

    const std::vector<Case> cases{
        {"nothing embedded", std::nullopt, ColorModel::rgb, false},
        {"no profile", QByteArray(200, 'x'), ColorModel::rgb, false},
        {"display", icc::saved(icc::rgb(1.8)), ColorModel::rgb, true},
        {"scanner", icc::saved(icc::rgb(1.8, cmsSigInputClass)), ColorModel::rgb, true},
        {"colour space", icc::saved(icc::rgb(1.8, cmsSigColorSpaceClass)), ColorModel::rgb, true},
        {"printer", icc::saved(icc::cmyk()), ColorModel::cmyk, true},
        {"gray", icc::saved(icc::gray(2.2)), ColorModel::gray, true},
        {"RGB for gray pixels", icc::saved(icc::rgb(1.8)), ColorModel::gray, false},
        {"CMYK for RGB pixels", icc::saved(icc::cmyk()), ColorModel::rgb, false},
        {"gray for CMYK pixels", icc::saved(icc::gray(2.2)), ColorModel::cmyk, false},
        {"device link", icc::saved(icc::deviceLink()), ColorModel::rgb, false},
        {"named colours", icc::saved(icc::namedColor()), ColorModel::rgb, false},
        {"abstract", icc::saved(icc::abstract()), ColorModel::rgb, false},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        EXPECT_EQ(appliedProfile(each.data, each.model), each.applies ? each.data : std::nullopt);
    }
}

TEST(ColorModelOfSpace, IsAbsentForSpacesThatNoRasterHas) {
    EXPECT_EQ(colorModel(IccProfile::Space::gray), ColorModel::gray);
    EXPECT_EQ(colorModel(IccProfile::Space::rgb), ColorModel::rgb);
    EXPECT_EQ(colorModel(IccProfile::Space::cmyk), ColorModel::cmyk);
    EXPECT_EQ(colorModel(IccProfile::Space::other), std::nullopt);
}

TEST(IccProfile, IsWellFormedInEveryClass) {
    for (const ClassCase& each : allClasses()) {
        EXPECT_TRUE(IccProfile::isWellFormed(each.data)) << each.name;
    }
}

TEST(IccProfile, IsNotWellFormedWithABadHeaderOrDirectory) {
    const QByteArray data = ordinary();
    const auto size = static_cast<quint32>(data.size());
    EXPECT_FALSE(IccProfile::isWellFormed({}));
    EXPECT_FALSE(IccProfile::isWellFormed("no profile at all"));
    EXPECT_FALSE(IccProfile::isWellFormed(data.first(127)));
    EXPECT_FALSE(IccProfile::isWellFormed(data.first(128)));
    EXPECT_FALSE(IccProfile::isWellFormed(data.first(data.size() - 1)));
    EXPECT_FALSE(IccProfile::isWellFormed(QByteArray(data).replace(36, 4, "acsP")));
    EXPECT_FALSE(IccProfile::isWellFormed(icc::patched(data, 0, size + 1)));
    EXPECT_FALSE(IccProfile::isWellFormed(QByteArray(data).replace(12, 4, "mnt\xFF")));
    EXPECT_FALSE(IccProfile::isWellFormed(icc::patched(data, 128, quint32{0xFFFF})));
    EXPECT_FALSE(IccProfile::isWellFormed(icc::patched(data, icc::entryOf(data, "desc") + 4, size)));
}

TEST(IccProfile, IsNotWellFormedWithATagThatIsThereTwice) {
    const QByteArray data = ordinary();
    const QByteArray twice = QByteArray(data).replace(icc::entryOf(data, "wtpt"), 4, "desc");
    EXPECT_FALSE(IccProfile::isWellFormed(twice)) << "the engine opens no such profile";
    EXPECT_FALSE(IccProfile::fromData(twice));
}

TEST(IccProfile, IsNotWellFormedWithACurveOfAnotherType) {
    const QByteArray data = ordinary();
    const auto offset = qFromBigEndian<quint32>(data.constData() + icc::entryOf(data, "rTRC") + 4);
    EXPECT_FALSE(IccProfile::isWellFormed(QByteArray(data).replace(offset, 4, "text")));
}

TEST(IccProfile, IsWellFormedWheneverItCanBeUsed) {
    const QByteArray data = ordinary();
    for (qsizetype offset = 0; offset < data.size(); ++offset) {
        QByteArray altered = data;
        altered[offset] = static_cast<char>(~altered[offset]);
        EXPECT_TRUE(IccProfile::isWellFormed(altered) || !IccProfile::fromData(altered)) << offset;
    }
}

} // namespace orvex::platform
