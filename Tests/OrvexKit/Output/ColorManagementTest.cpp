#include "Output/ColorManagement.h"

#include "Color/IccProfile.h"
#include "Files/FileSystemError.h"
#include "Files/Paths.h"
#include "IccFixtures.h"
#include "InChinese.h"
#include "Json/JsonError.h"
#include "Json/JsonWriter.h"
#include "OrvexError.h"
#include "ProfileContainers.h"
#include "Sha256.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

namespace orvex {

using namespace test;

namespace {

const QString storedUntagged = QStringLiteral("未报告嵌入配置；不推定为 sRGB");

SourceColorProfile detect(const QByteArray& file, const std::optional<QByteArray>& imageProfile) {
    platform::ByteReader data(file);
    return SourceColorProfile::detect(data, imageProfile);
}

/// A picture with a colour space and no pixels.
platform::Raster picture(const std::optional<QByteArray>& profile) {
    return {1, 1, 1, {}, profile, nullptr};
}

QByteArray pngWith(const QByteArray& profile) {
    return pngFile({pngChunk("IHDR", QByteArray(13, '\1')), pngChunk("iCCP", iccpData(profile))});
}

template <typename Action>
QString refusal(const Action& action) {
    try {
        action();
    } catch (const OrvexError& error) {
        return error.message();
    }
    return QStringLiteral("no refusal");
}

QString outputRefusal(const QByteArray& data) {
    return refusal([&data] { (void)OutputICCProfile::inspect(data, QStringLiteral("fallback")); });
}

ColorWorkflow readWorkflow(const char* json) {
    return ColorWorkflow::fromJson(platform::JsonReader::parse(json));
}

QString readFailure(const char* json) {
    try {
        (void)readWorkflow(json);
    } catch (const platform::JsonError& error) {
        return error.keyPath() + QStringLiteral(" | ") + error.description();
    }
    return QStringLiteral("no failure");
}

const QString headerRefusal = QStringLiteral("Invalid ICC header or signature.");
const QString engineRefusal =
    QStringLiteral("ColorSync could not validate this ICC profile. It may be damaged or unsupported.");
const QString outputClassRefusal =
    QStringLiteral("The output ICC must be an RGB/CMYK printer, display or color-space profile. Device-link, abstract "
                   "and named-color profiles are not accepted.");

} // namespace

TEST(ColorManagementMode, HasItsStoredTextsAndLabels) {
    using enum ColorManagementMode;
    EXPECT_EQ(rawValue(driverManaged), QStringLiteral("driverManaged"));
    EXPECT_EQ(rawValue(appManaged), QStringLiteral("appManaged"));
    EXPECT_EQ(label(driverManaged), QStringLiteral("Let the Canon driver manage color"));
    EXPECT_EQ(label(appManaged), QStringLiteral("Convert in the app to the selected ICC"));
    const InChinese chinese;
    EXPECT_EQ(label(driverManaged), QStringLiteral("由佳能驱动管理颜色"));
    EXPECT_EQ(label(appManaged), QStringLiteral("由应用转换到所选 ICC"));
    EXPECT_EQ(rawValue(appManaged), QStringLiteral("appManaged"));
}

TEST(ColorManagementMode, IsReadFromItsStoredTextOnly) {
    for (const ColorManagementMode mode : allColorManagementModes) {
        EXPECT_EQ(colorManagementMode(rawValue(mode)), mode);
    }
    EXPECT_EQ(colorManagementMode(QStringLiteral("AppManaged")), std::nullopt);
    EXPECT_EQ(colorManagementMode({}), std::nullopt);
}

TEST(ColorRenderingIntent, HasItsStoredTextsLabelsAndNumbers) {
    struct Case {
        const char* rawValue;
        const char* english;
        const char* chinese;
        int number;
    };

    const std::array<Case, 4> cases{{{"perceptual", "Perceptual", "可感知", 3},
                                     {"relativeColorimetric", "Relative colorimetric", "相对比色", 2},
                                     {"saturation", "Saturation", "饱和度", 4},
                                     {"absoluteColorimetric", "Absolute colorimetric", "绝对比色", 1}}};
    ASSERT_EQ(allColorRenderingIntents.size(), cases.size());
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const ColorRenderingIntent intent = allColorRenderingIntents.at(i);
        EXPECT_EQ(rawValue(intent), QString::fromUtf8(cases.at(i).rawValue));
        EXPECT_EQ(colorRenderingIntent(rawValue(intent)), intent);
        EXPECT_EQ(cgIntent(intent), cases.at(i).number);
        EXPECT_EQ(label(intent), QString::fromUtf8(cases.at(i).english));
        const InChinese chinese;
        EXPECT_EQ(label(intent), QString::fromUtf8(cases.at(i).chinese));
    }
    EXPECT_EQ(colorRenderingIntent(QStringLiteral("Perceptual")), std::nullopt);
}

TEST(ColorWorkflow, LeavesColorToTheDriverUnlessToldOtherwise) {
    const ColorWorkflow workflow;
    EXPECT_EQ(workflow.mode, ColorManagementMode::driverManaged);
    EXPECT_EQ(workflow.intent, ColorRenderingIntent::relativeColorimetric);
    EXPECT_FALSE(workflow.driverColorCorrectionDisabledConfirmed);
}

TEST(ColorWorkflow, IsWrittenWithItsThreeKeys) {
    EXPECT_EQ(platform::writeJson(ColorWorkflow{.mode = ColorManagementMode::appManaged,
                                                .intent = ColorRenderingIntent::perceptual,
                                                .driverColorCorrectionDisabledConfirmed = true}
                                      .toJson(),
                                  platform::JsonForm::compactLine),
              R"({"driverColorCorrectionDisabledConfirmed":true,"intent":"perceptual","mode":"appManaged"})");
}

TEST(ColorWorkflow, ComesBackFromJsonAsItWas) {
    for (const ColorManagementMode mode : allColorManagementModes) {
        for (const ColorRenderingIntent intent : allColorRenderingIntents) {
            for (const bool confirmed : {false, true}) {
                const ColorWorkflow workflow{mode, intent, confirmed};
                const QByteArray json = platform::writeJson(workflow.toJson(), platform::JsonForm::pretty);
                EXPECT_EQ(readWorkflow(json.constData()), workflow);
            }
        }
    }
}

TEST(ColorWorkflow, RequiresEveryKeyAndKnownValues) {
    EXPECT_EQ(readFailure(R"({"intent":"saturation","driverColorCorrectionDisabledConfirmed":false})").left(7),
              QStringLiteral("mode | "));
    EXPECT_EQ(readFailure(R"({"mode":"appManaged","driverColorCorrectionDisabledConfirmed":false})").left(9),
              QStringLiteral("intent | "));
    EXPECT_EQ(readFailure(R"({"mode":"appManaged","intent":"saturation"})").left(41),
              QStringLiteral("driverColorCorrectionDisabledConfirmed | "));
    EXPECT_EQ(readFailure(R"({"mode":"appManaged","intent":"saturation","driverColorCorrectionDisabledConfirmed":1})")
                  .left(41),
              QStringLiteral("driverColorCorrectionDisabledConfirmed | "));
    const char* unknownMode =
        R"({"mode":"printerManaged","intent":"saturation","driverColorCorrectionDisabledConfirmed":false})";
    const char* unknownIntent =
        R"({"mode":"appManaged","intent":"Saturation","driverColorCorrectionDisabledConfirmed":false})";
    EXPECT_EQ(readFailure(unknownMode), QStringLiteral("mode | Unknown color management mode."));
    EXPECT_EQ(readFailure(unknownIntent), QStringLiteral("intent | Unknown rendering intent."));
    const InChinese chinese;
    EXPECT_EQ(readFailure(unknownMode), QStringLiteral("mode | 未知的颜色管理方式。"));
    EXPECT_EQ(readFailure(unknownIntent), QStringLiteral("intent | 未知的渲染意图。"));
}

TEST(SourceColorProfile, StoresTheUntaggedNameInChineseAndShowsItInTheLanguage) {
    const SourceColorProfile untagged = SourceColorProfile::untagged();
    EXPECT_EQ(untagged.name, storedUntagged);
    EXPECT_EQ(untagged.embeddedICCData, std::nullopt);
    EXPECT_FALSE(untagged.isTagged());
    EXPECT_EQ(untagged, SourceColorProfile());
    EXPECT_EQ(untagged.displayName(), QStringLiteral("No embedded profile reported; sRGB is not assumed"));
    const InChinese chinese;
    EXPECT_EQ(SourceColorProfile::untagged().name, storedUntagged);
    EXPECT_EQ(untagged.displayName(), storedUntagged);
}

TEST(SourceColorProfile, ShowsAnyOtherNameAsItIs) {
    EXPECT_EQ((SourceColorProfile{std::nullopt, QStringLiteral("other")}).displayName(), QStringLiteral("other"));
    EXPECT_EQ((SourceColorProfile{QByteArray("data"), storedUntagged}).displayName(), storedUntagged);
    EXPECT_TRUE((SourceColorProfile{QByteArray("data"), storedUntagged}).isTagged());
}

TEST(DetectedProfile, IsTheOneThatTheDecoderApplied) {
    const QByteArray profile = icc::saved(icc::rgb(1.8));
    const TiffForm form;
    const TiffForm big{.isLittle = false, .isBig = true};
    const auto tiffWith = [&profile](const TiffForm& of) {
        return of.file({34675, 7, static_cast<quint64>(profile.size()), of.tailOffset()}, profile);
    };
    const std::vector<QByteArray> files{pngWith(profile), jpegFile({iccSegment(1, 1, profile)}), tiffWith(form),
                                        tiffWith(big)};
    for (std::size_t i = 0; i < files.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(detect(files[i], profile), (SourceColorProfile{profile, QStringLiteral("Test RGB")}));
        EXPECT_EQ(detect(files[i], std::nullopt), SourceColorProfile::untagged());
        EXPECT_EQ(detect(files[i], icc::saved(icc::rgb(1.9))), SourceColorProfile::untagged());
        EXPECT_EQ(detect(files[i], profile + '\0'), SourceColorProfile::untagged());
    }
}

TEST(DetectedProfile, IsTheSystemsSRgbWhereFileAndDecoderSaySo) {
    const QByteArray sRgb = platform::sRgbProfileData();
    const QByteArray png = pngFile({pngChunk("IHDR", QByteArray(13, '\1')), pngChunk("sRGB", QByteArray(1, '\0'))});
    const TiffForm form;
    const QByteArray jpeg = jpegFile({exifSegment(form.exif(form.exifPointer(), {40961, 3, 1, 1}))});
    for (const QByteArray& file : {png, jpeg}) {
        EXPECT_EQ(detect(file, sRgb), (SourceColorProfile{sRgb, QStringLiteral("sRGB IEC61966-2.1")}));
        EXPECT_EQ(detect(file, std::nullopt), SourceColorProfile::untagged());
        EXPECT_EQ(detect(file, icc::saved(icc::rgb(1.8))), SourceColorProfile::untagged());
    }
    const QByteArray silent = pngFile({pngChunk("IHDR", QByteArray(13, '\1')), pngChunk("IDAT", {})});
    EXPECT_EQ(detect(silent, sRgb), SourceColorProfile::untagged()) << "never assumed";
}

TEST(DetectedProfile, IsChosenByTheFirstBytesOfTheFile) {
    const QByteArray profile = icc::saved(icc::rgb(1.8));
    const QByteArray png = pngWith(profile);
    EXPECT_FALSE(detect(QByteArray(png).replace(1, 1, "Q"), profile).isTagged());
    EXPECT_FALSE(detect(QByteArray(png).replace(7, 1, "\r"), profile).isTagged());
    EXPECT_FALSE(detect("\0\0\0\x18"
                        "ftypheic" +
                            profile,
                        profile)
                     .isTagged());
    for (qsizetype size = 0; size < 8; ++size) {
        EXPECT_FALSE(detect(png.first(size), profile).isTagged());
    }
    EXPECT_FALSE(detect("\xFF", profile).isTagged());
    EXPECT_FALSE(detect("M", profile).isTagged());
    EXPECT_FALSE(detect("II", profile).isTagged());
}

TEST(DetectedProfile, MustBeUsableAsASource) {
    struct Case {
        const char* name;
        QByteArray profile;
        bool isTagged;
    };

    const QByteArray ordinary = icc::saved(icc::rgb(1.8));
    const QByteArray inks = icc::saved(icc::cmyk());
    const std::vector<Case> cases{
        {"scanner", icc::saved(icc::rgb(1.8, cmsSigInputClass)), true},
        {"colour space", icc::saved(icc::rgb(1.8, cmsSigColorSpaceClass)), true},
        {"printer", icc::saved(icc::cmyk()), true},
        {"gray", icc::saved(icc::gray(2.2)), true},
        {"device link", icc::saved(icc::deviceLink()), false},
        {"abstract", icc::saved(icc::abstract()), false},
        {"named colours", icc::saved(icc::namedColor()), false},
        {"Lab", icc::saved(icc::lab()), false},
        {"cut off", ordinary.chopped(1), false},
        {"white point beyond the profile",
         icc::patched(ordinary, icc::entryOf(ordinary, "wtpt") + 4, quint32{0x7FFFFFFF}), false},
        {"unreadable table of another intent", QByteArray(inks).replace(icc::contentOf(inks, "A2B2"), 4, "XXXX"),
         false},
        {"131 bytes", ordinary.first(131), false},
        {"no profile", QByteArray(300, 'x'), false},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        EXPECT_EQ(detect(pngWith(each.profile), each.profile).isTagged(), each.isTagged);
    }
}

TEST(DetectedProfile, HasAFixedNameIfItHasNoneOfItsOwn) {
    const icc::Profile nameless = icc::rgb(1.8);
    cmsWriteTag(nameless.get(), cmsSigProfileDescriptionTag, nullptr);
    const QByteArray profile = icc::saved(nameless);
    EXPECT_EQ(detect(pngWith(profile), profile).name, QStringLiteral("Embedded ICC"));
    const InChinese chinese;
    EXPECT_EQ(detect(pngWith(profile), profile).name, QStringLiteral("文件内嵌 ICC"));
}

TEST(DetectedProfile, IsReadFromAFile) {
    const TemporaryFolder folder;
    const QByteArray profile = icc::saved(icc::rgb(1.8));
    const QUrl url = platform::fileUrl(folder.write(QStringLiteral("a%20b.png"), pngWith(profile)));
    EXPECT_EQ(SourceColorProfile::detect(url, picture(profile)).embeddedICCData, profile);
    EXPECT_EQ(SourceColorProfile::detect(url, picture(std::nullopt)), SourceColorProfile::untagged());
}

TEST(DetectedProfile, FailsIfTheFileCannotBeRead) {
    const TemporaryFolder folder;
    try {
        (void)SourceColorProfile::detect(platform::fileUrl(folder.path(QStringLiteral("none.png"))),
                                         picture(std::nullopt));
        FAIL() << "a missing file passed";
    } catch (const platform::FileSystemError& error) {
        EXPECT_TRUE(error.isMissing());
    }
    EXPECT_THROW((void)SourceColorProfile::detect(platform::fileUrl(folder.path()), picture(std::nullopt)),
                 platform::FileSystemError);
}

TEST(OutputICCProfile, TellsWhatTheProfileIs) {
    const QByteArray cmyk = icc::saved(icc::cmyk());
    EXPECT_EQ(OutputICCProfile::inspect(cmyk, QStringLiteral("fallback")),
              (OutputICCProfile{.name = QStringLiteral("Test CMYK"),
                                .profileClass = QStringLiteral("prtr"),
                                .colorModel = QStringLiteral("CMYK"),
                                .componentCount = 4,
                                .sha256 = platform::sha256Hex(cmyk)}));
    const QByteArray display = icc::saved(icc::rgb(1.8));
    EXPECT_EQ(OutputICCProfile::inspect(display, QStringLiteral("fallback")),
              (OutputICCProfile{.name = QStringLiteral("Test RGB"),
                                .profileClass = QStringLiteral("mntr"),
                                .colorModel = QStringLiteral("RGB"),
                                .componentCount = 3,
                                .sha256 = platform::sha256Hex(display)}));
    EXPECT_EQ(OutputICCProfile::inspect(icc::saved(icc::rgb(1.8, cmsSigColorSpaceClass)), {}).profileClass,
              QStringLiteral("spac"));
}

TEST(OutputICCProfile, TakesTheFallbackNameIfTheProfileHasNone) {
    const icc::Profile nameless = icc::rgb(1.8);
    cmsWriteTag(nameless.get(), cmsSigProfileDescriptionTag, nullptr);
    EXPECT_EQ(OutputICCProfile::inspect(icc::saved(nameless), QStringLiteral("fallback")).name,
              QStringLiteral("fallback"));
    const TemporaryFolder folder;
    const QString path = folder.write(QStringLiteral("画布 #1.icc"), icc::saved(nameless));
    EXPECT_EQ(OutputICCProfile::inspect(platform::fileUrl(path)).name, QStringLiteral("画布 #1.icc"));
}

TEST(OutputICCProfile, ReadsTheWholeFile) {
    const TemporaryFolder folder;
    const QByteArray data = icc::saved(icc::cmyk()) + "behind";
    const QUrl url = platform::fileUrl(folder.write(QStringLiteral("a.icc"), data));
    EXPECT_EQ(OutputICCProfile::inspect(url), OutputICCProfile::inspect(data, {}));
    EXPECT_THROW((void)OutputICCProfile::inspect(platform::fileUrl(folder.path(QStringLiteral("none.icc")))),
                 platform::FileSystemError);
}

TEST(OutputICCProfile, RefusesAFileOfMoreThan64MiB) {
    const TemporaryFolder folder;
    QByteArray data = icc::saved(icc::rgb(1.8));
    data.resize(67'108'865, '\0');
    const QUrl url = platform::fileUrl(folder.write(QStringLiteral("large.icc"), data));
    EXPECT_EQ(refusal([&url] { (void)OutputICCProfile::inspect(url); }), engineRefusal);
    EXPECT_EQ(outputRefusal(data), engineRefusal);
    EXPECT_EQ(outputRefusal(data.first(67'108'864)), QStringLiteral("no refusal"));
}

TEST(OutputICCProfile, RefusesABadHeaderFirst) {
    const QByteArray data = icc::saved(icc::rgb(1.8));
    EXPECT_EQ(outputRefusal(data.first(131)), headerRefusal);
    EXPECT_EQ(outputRefusal(data.first(132)), engineRefusal);
    EXPECT_EQ(outputRefusal({}), headerRefusal);
    EXPECT_EQ(outputRefusal(QByteArray(data).replace(36, 4, "acsq")), headerRefusal);
    EXPECT_EQ(outputRefusal(QByteArray(data).replace(36, 1, "\xE1")), headerRefusal);
    EXPECT_EQ(outputRefusal(icc::patched(data.first(131), 0, quint32{0})), headerRefusal);
    const InChinese chinese;
    EXPECT_EQ(outputRefusal({}), QStringLiteral("ICC 文件头或签名无效。"));
}

TEST(OutputICCProfile, RefusesWhatTheEngineCannotUse) {
    const QByteArray data = icc::saved(icc::rgb(1.8));
    const auto size = static_cast<quint32>(data.size());
    EXPECT_EQ(outputRefusal(icc::patched(data, 0, size)), QStringLiteral("no refusal"));
    EXPECT_EQ(outputRefusal(icc::patched(data, 0, size + 1)), engineRefusal);
    EXPECT_EQ(outputRefusal(icc::patched(data, 0, quint32{131})), engineRefusal);
    EXPECT_EQ(outputRefusal(QByteArray(data).replace(12, 1, "\xFF")), engineRefusal);
    EXPECT_EQ(outputRefusal(data + "behind"), QStringLiteral("no refusal"));
    const InChinese chinese;
    EXPECT_EQ(outputRefusal(data.first(132)),
              QStringLiteral("ColorSync 无法验证此 ICC 配置文件，文件可能已损坏或不受支持。"));
}

TEST(OutputICCProfile, RefusesDamageToWhatAnyIntentNeeds) {
    const QByteArray data = icc::saved(icc::cmyk());
    EXPECT_EQ(outputRefusal(data), QStringLiteral("no refusal"));
    for (const char* tag : {"A2B0", "A2B2", "B2A0", "B2A1", "B2A2", "wtpt"}) {
        EXPECT_EQ(outputRefusal(icc::patched(data, icc::entryOf(data, tag) + 8, quint32{0x7FFFFFFF})), engineRefusal);
        EXPECT_EQ(outputRefusal(QByteArray(data).replace(icc::contentOf(data, tag), 4, "XXXX")), engineRefusal);
    }
}

TEST(OutputICCProfile, RefusesDamageBeforeItsClass) {
    const QByteArray link = icc::saved(icc::deviceLink());
    EXPECT_EQ(outputRefusal(link), outputClassRefusal);
    EXPECT_EQ(outputRefusal(icc::patched(link, icc::entryOf(link, "pseq") + 4, quint32{0})), engineRefusal);
}

TEST(OutputICCProfile, RefusesOtherClassesAndModels) {
    const std::vector<std::pair<const char*, icc::Profile>> cases = [] {
        std::vector<std::pair<const char*, icc::Profile>> all;
        all.emplace_back("scanner", icc::rgb(1.8, cmsSigInputClass));
        all.emplace_back("gray", icc::gray(2.2));
        all.emplace_back("gray printer", icc::gray(2.2, cmsSigOutputClass));
        all.emplace_back("device link", icc::deviceLink());
        all.emplace_back("abstract", icc::abstract());
        all.emplace_back("named colours", icc::namedColor());
        all.emplace_back("Lab", icc::lab());
        return all;
    }();
    for (const auto& [name, profile] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(outputRefusal(icc::saved(profile)), outputClassRefusal);
    }
    const InChinese chinese;
    EXPECT_EQ(
        outputRefusal(icc::saved(icc::abstract())),
        QStringLiteral("输出 ICC "
                       "必须是 RGB/CMYK 的打印机、显示器或色彩空间配置文件；不接受设备链接、抽象和命名颜色配置文件。"));
}

TEST(ICCProfileInfo, TellsNameSpaceAndComponents) {
    const TemporaryFolder folder;
    const auto inspected = [&folder](const icc::Profile& profile) {
        return ICCProfileInfo::inspect(platform::fileUrl(folder.write(QStringLiteral("a.icc"), icc::saved(profile))));
    };
    EXPECT_EQ(inspected(icc::cmyk()), (ICCProfileInfo{QStringLiteral("a.icc"), QStringLiteral("Test CMYK"), 4}));
    EXPECT_EQ(inspected(icc::gray(1.0)).componentCount, 1);
    EXPECT_EQ(inspected(icc::rgb(1.8, cmsSigInputClass)).componentCount, 3) << "no class is refused";
    const icc::Profile nameless = icc::rgb(1.8);
    cmsWriteTag(nameless.get(), cmsSigProfileDescriptionTag, nullptr);
    EXPECT_EQ(inspected(nameless).colorSpace, QStringLiteral("Custom ICC color space"));
    const InChinese chinese;
    EXPECT_EQ(inspected(nameless).colorSpace, QStringLiteral("自定义 ICC 色彩空间"));
}

TEST(ICCProfileInfo, TakesFilesOf129To19999999Bytes) {
    const TemporaryFolder folder;
    const auto told = [&folder](qsizetype size) {
        QByteArray data = icc::saved(icc::rgb(1.8));
        data.resize(size, '\0');
        const QUrl url = platform::fileUrl(folder.write(QStringLiteral("a.icc"), data));
        return refusal([&url] { (void)ICCProfileInfo::inspect(url); });
    };
    const QString wrongSize = QStringLiteral("Invalid ICC file size.");
    const QString unreadable = QStringLiteral("Cannot parse this ICC profile.");
    EXPECT_EQ(told(0), wrongSize);
    EXPECT_EQ(told(128), wrongSize);
    EXPECT_EQ(told(129), unreadable);
    EXPECT_EQ(told(200), unreadable);
    EXPECT_EQ(told(19'999'999), QStringLiteral("no refusal"));
    EXPECT_EQ(told(20'000'000), wrongSize);
    const InChinese chinese;
    EXPECT_EQ(told(128), QStringLiteral("ICC 文件大小无效。"));
    EXPECT_EQ(told(129), QStringLiteral("无法解析此 ICC 配置文件。"));
}

TEST(ICCProfileInfo, FailsIfTheFileCannotBeRead) {
    const TemporaryFolder folder;
    EXPECT_THROW((void)ICCProfileInfo::inspect(platform::fileUrl(folder.path(QStringLiteral("none.icc")))),
                 platform::FileSystemError);
}

} // namespace orvex
