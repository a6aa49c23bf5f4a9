#include "Command.h"
#include "IccFixtures.h"
#include "QpdfReading.h"
#include "TemporaryFolder.h"
#include "TiffFixture.h"

#include <QJsonArray>
#include <QJsonObject>

#include <gtest/gtest.h>

namespace orvex {
namespace {

using test::CommandResult;
using test::q;
using test::QpdfReading;
using test::runCommand;
using test::TiffFixture;

/// A picture of 6 x 5.13 inches, whose rows make three strips.
TiffFixture picture(quint16 bits) {
    TiffFixture tiff{.width = 600, .height = 513, .bits = bits};
    tiff.density = {100, 100};
    tiff.profile = test::icc::saved(test::icc::rgb(1.8));
    tiff.pixels.resize(600 * 513 * 3 * bits / 8);
    for (qsizetype index = 0; index < tiff.pixels.size(); ++index) {
        tiff.pixels[index] = static_cast<char>(index * index / 977 + index / 7);
    }
    return tiff;
}

class ColorConversion : public ::testing::Test {
protected:
    QString path(const char* name) const { return folder_.path(q(name)); }

    QString write(const char* name, const QByteArray& bytes) const { return folder_.write(q(name), bytes); }

    QStringList rollCommand(const QStringList& pictures) const {
        return QStringList{q("roll")} + pictures +
               QStringList{q("-o"), path("roll.pdf"), q("--output-icc"), path("out.icc"), q("--driver-correction-off")};
    }

    test::TemporaryFolder folder_;
    const QByteArray inks_ = test::icc::saved(test::icc::cmyk());
    const QString profile_ = write("out.icc", inks_);
};

TEST_F(ColorConversion, fillsARollWithTheInksOfTheChosenProfile) {
    const QStringList pictures{write("a.tif", picture(8).bytes()), write("b.tif", picture(16).bytes())};
    const CommandResult result = runCommand(rollCommand(pictures) + QStringList{q("--intent"), q("saturation")});
    ASSERT_EQ(result.status, 0) << result.errors.toStdString();
    const QJsonArray audits = result.json().object()[q("audits")].toArray();
    ASSERT_EQ(audits.size(), 2);
    for (const QJsonValue& audit : audits) {
        EXPECT_EQ(audit[q("renderedColorModel")], q("CMYK"));
        EXPECT_EQ(audit[q("sourceProfileName")], q("Test RGB"));
    }
    EXPECT_EQ(audits[0][q("renderedBitsPerComponent")], 8);
    EXPECT_EQ(audits[1][q("renderedBitsPerComponent")], 16);
    QpdfReading pdf(path("roll.pdf"));
    EXPECT_EQ(pdf.content().count("/Saturation ri "), 2);
    for (QPDFObjectHandle& image : pdf.images()) {
        EXPECT_EQ(QpdfReading::data(image.getDict().getKey("/ColorSpace").getArrayItem(1)), inks_);
    }
}

TEST_F(ColorConversion, takesTheTaggedPicturesOfEveryContainerThatCanTellItsProfile) {
    struct Case {
        const char* file;
        int bits;
    };

    const std::vector<Case> cases{{"jpeg/profile.jpg", 8},  {"jpeg/exif-srgb.jpg", 8}, {"jpeg/gray-turned.jpg", 8},
                                  {"png/profile.png", 8},   {"png/srgb.png", 8},       {"png/alpha.png", 8},
                                  {"tiff/sixteen.tif", 16}, {"tiff/bigtiff.tif", 8},   {"tiff/ink.tif", 8}};
    for (const Case& each : cases) {
        SCOPED_TRACE(each.file);
        const CommandResult result = runCommand(rollCommand({q(ORVEX_SEEDS) + u'/' + q(each.file)}));
        ASSERT_EQ(result.status, 0) << result.errors.toStdString();
        EXPECT_EQ(result.json().object()[q("audits")][0][q("renderedColorModel")], q("CMYK"));
        EXPECT_EQ(result.json().object()[q("audits")][0][q("renderedBitsPerComponent")], each.bits);
        QpdfReading pdf(path("roll.pdf"));
        QPDFObjectHandle image = pdf.images().at(0).getDict();
        EXPECT_EQ(image.getKey("/Filter").getName(), "/FlateDecode") << "converted, not copied";
        EXPECT_EQ(image.getKey("/ColorSpace").getArrayItem(1).getDict().getKey("/N").getIntValue(), 4);
    }
}

TEST_F(ColorConversion, refusesPicturesWhoseContainerTellsNoProfile) {
    write("roll.pdf", "old");
    for (const char* file : {"jpeg/plain.jpg", "png/plain.png", "tiff/plain.tif", "heif/profile.heic"}) {
        SCOPED_TRACE(file);
        const CommandResult result = runCommand(rollCommand({q(ORVEX_SEEDS) + u'/' + q(file)}));
        EXPECT_EQ(result.status, 1);
        EXPECT_TRUE(result.errors.contains(q("The source reports no embedded ICC profile.")))
            << result.errors.toStdString();
        EXPECT_EQ(test::TemporaryFolder::read(path("roll.pdf")), "old");
    }
}

TEST_F(ColorConversion, leavesTheEarlierRollIfAnyArtworkCannotBeConverted) {
    TiffFixture untagged = picture(8);
    untagged.profile.clear();
    const QStringList pictures{write("a.tif", picture(8).bytes()), write("b.tif", untagged.bytes())};
    write("roll.pdf", "old");
    const QStringList names = folder_.names();
    const CommandResult result = runCommand(rollCommand(pictures));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, QByteArray());
    EXPECT_TRUE(result.errors.contains(q("The source reports no embedded ICC profile. Its color space cannot be "
                                         "guessed. Tag it correctly in your creative software or use driver-managed "
                                         "color.")))
        << result.errors.toStdString();
    EXPECT_EQ(test::TemporaryFolder::read(path("roll.pdf")), "old");
    EXPECT_EQ(folder_.names(), names);
}

TEST_F(ColorConversion, refusesAnOutputProfileThatConvertsToGray) {
    write("out.icc", test::icc::saved(test::icc::gray(2.2)));
    write("roll.pdf", "old");
    const CommandResult result = runCommand(rollCommand({write("a.tif", picture(8).bytes())}));
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.errors.contains(q("The output ICC must be an RGB/CMYK printer, display or color-space profile. "
                                         "Device-link, abstract and named-color profiles are not accepted.")))
        << result.errors.toStdString();
    EXPECT_EQ(test::TemporaryFolder::read(path("roll.pdf")), "old");
}

TEST_F(ColorConversion, refusesAnOutputProfileThatIsDamagedWhereAnyIntentNeedsIt) {
    const QString artwork = write("a.tif", picture(8).bytes());
    write("roll.pdf", "old");
    const qsizetype table = test::icc::entryOf(inks_, "B2A2");
    const QByteArray cut = inks_.first(test::icc::contentOf(inks_, "B2A2") + 1000);
    const std::vector<QByteArray> damaged{
        test::icc::patched(inks_, table + 4, static_cast<quint32>(inks_.size())),
        test::icc::patched(inks_, table + 8, quint32{0xFFFFFFFF}),
        test::icc::patched(cut, 0, static_cast<quint32>(cut.size())),
        QByteArray(inks_).replace(test::icc::contentOf(inks_, "wtpt"), 4, "XXXX"),
    };
    for (const QByteArray& each : damaged) {
        write("out.icc", each);
        for (const char* intent : {"perceptual", "relativeColorimetric", "saturation", "absoluteColorimetric"}) {
            const CommandResult result = runCommand(rollCommand({artwork}) + QStringList{q("--intent"), q(intent)});
            EXPECT_EQ(result.status, 1);
            EXPECT_EQ(result.output, QByteArray());
            EXPECT_TRUE(result.errors.contains(
                q("ColorSync could not validate this ICC profile. It may be damaged or unsupported.")))
                << intent << result.errors.toStdString();
            EXPECT_EQ(test::TemporaryFolder::read(path("roll.pdf")), "old");
        }
    }
}

TEST_F(ColorConversion, takesAPictureWithADamagedProfileAsOneWithout) {
    TiffFixture tiff = picture(8);
    const QByteArray sound = tiff.profile;
    tiff.profile = test::icc::patched(sound, test::icc::entryOf(sound, "wtpt") + 4, quint32{0x7FFFFFFF});
    const QString artwork = write("a.tif", tiff.bytes());
    const CommandResult converted = runCommand(rollCommand({artwork}));
    EXPECT_EQ(converted.status, 1);
    EXPECT_TRUE(converted.errors.contains(q("The source reports no embedded ICC profile.")))
        << converted.errors.toStdString();
    const CommandResult byTheDriver = runCommand({q("roll"), artwork, q("-o"), path("roll.pdf")});
    EXPECT_EQ(byTheDriver.status, 0) << byTheDriver.errors.toStdString();
    EXPECT_EQ(byTheDriver.json().object()[q("audits")][0][q("sourceProfileName")], q("未报告嵌入配置；不推定为 sRGB"));
}

TEST_F(ColorConversion, isNotAskedForByAnEmptyPath) {
    const QString image = write("a.tif", picture(8).bytes());
    write("roll.pdf", "old");
    const QStringList names = folder_.names();
    const QStringList confirmed{q("--output-icc"), QString(), q("--driver-correction-off")};
    for (const QStringList& command :
         {QStringList{q("roll"), image}, {q("render"), q("-")}}) { // the path is looked at before the layout
        for (const QStringList& options : {confirmed, confirmed.first(2)}) {
            SCOPED_TRACE((command.first() + u' ' + options.join(u' ')).toStdString());
            const QStringList arguments = command + QStringList{q("-o"), path("roll.pdf")} + options;
            const CommandResult result = runCommand(arguments);
            EXPECT_EQ(result.status, 2);
            EXPECT_EQ(result.output, QByteArray());
            EXPECT_TRUE(result.errors.startsWith(q("--output-icc: the path of the output profile must not be empty\n")))
                << result.errors.toStdString();
            const CommandResult chinese = runCommand(arguments, {}, q("zh-Hans"));
            EXPECT_EQ(chinese.status, 2);
            EXPECT_TRUE(chinese.errors.startsWith(q("用法错误（--output-icc: 输出 ICC 的路径不能为空）\n")))
                << chinese.errors.toStdString();
        }
    }
    EXPECT_EQ(test::TemporaryFolder::read(path("roll.pdf")), "old");
    EXPECT_EQ(folder_.names(), names);
}

TEST_F(ColorConversion, hasNoOptionsWithoutAnOutputProfile) {
    const QString image = write("a.tif", picture(8).bytes());
    const QStringList names = folder_.names();
    for (const QStringList& command : {QStringList{q("roll"), image}, {q("render"), q("-")}}) {
        for (const QStringList& options :
             {QStringList{q("--driver-correction-off")}, {q("--intent"), q("saturation")}}) {
            const CommandResult result = runCommand(command + QStringList{q("-o"), path("roll.pdf")} + options);
            EXPECT_EQ(result.status, 2);
            EXPECT_EQ(result.output, QByteArray());
            EXPECT_TRUE(result.errors.startsWith(options.first() + q(" requires --output-icc\n")))
                << result.errors.toStdString();
        }
    }
    EXPECT_EQ(folder_.names(), names);
}

} // namespace
} // namespace orvex
