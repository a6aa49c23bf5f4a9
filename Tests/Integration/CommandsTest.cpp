#include "Color/IccProfile.h"
#include "Command.h"
#include "Sha256.h"
#include "TemporaryFolder.h"
#include "TiffFixture.h"

#include <QJsonArray>
#include <QJsonObject>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvex {
namespace {

using test::CommandResult;
using test::q;
using test::runCommand;
using test::TiffFixture;

/// A picture of 300 x 200 pixels: 3 x 2 inches at 100 per inch.
TiffFixture picture() {
    TiffFixture tiff{.width = 300, .height = 200};
    tiff.density = {100, 100};
    tiff.pixels.resize(300 * 200 * 3);
    for (qsizetype index = 0; index < tiff.pixels.size(); ++index) {
        tiff.pixels[index] = static_cast<char>(index * 7 / 3);
    }
    return tiff;
}

class Commands : public ::testing::Test {
protected:
    QString image(const char* name, const TiffFixture& tiff = picture()) {
        return folder_.write(q(name), tiff.bytes());
    }

    QString path(const char* name) const { return folder_.path(q(name)); }

    void expectRefused(const CommandResult& result, const QString& message) {
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.output, QByteArray());
        EXPECT_EQ(result.errors, message + q("\n"));
    }

    test::TemporaryFolder folder_;
};

TEST_F(Commands, rollPutsImagesOnARollAndTellsWhatItDid) {
    const CommandResult result = runCommand({q("roll"), image("a.tif"), image("b.tif"), q("-o"), path("roll.pdf"),
                                             q("--width"), q("20"), q("--layout-out"), path("roll.json")});
    ASSERT_EQ(result.status, 0) << result.errors.toStdString();
    const QJsonObject answer = result.json().object();
    EXPECT_EQ(answer[q("widthInches")], 20);
    EXPECT_EQ(answer[q("lengthInches")], 7);
    EXPECT_EQ(answer[q("conventionalLengthInches")], 7);
    EXPECT_EQ(answer[q("userUnit")], 1);
    EXPECT_EQ(answer[q("utilization")], 80);
    EXPECT_EQ(answer[q("warnings")], QJsonArray());
    EXPECT_EQ(answer[q("audits")].toArray().size(), 2);
    EXPECT_EQ(answer[q("layout")][q("items")].toArray().size(), 2);
    EXPECT_EQ(answer[q("layout")][q("items")][1][q("xInches")], 8);
    EXPECT_TRUE(test::TemporaryFolder::read(path("roll.pdf")).startsWith("%PDF-1.5"));

    const CommandResult check =
        runCommand({q("check"), path("roll.pdf"), q("--width-inches"), q("20"), q("--height-inches"), q("7")});
    EXPECT_EQ(check.json().object(), (QJsonObject{{q("widthInches"), 20}, {q("heightInches"), 7}, {q("userUnit"), 1}}));

    const QJsonObject saved = QJsonDocument::fromJson(test::TemporaryFolder::read(path("roll.json"))).object();
    EXPECT_EQ(saved[q("version")], 1);
    EXPECT_EQ(saved[q("layout")], answer[q("layout")]);
    EXPECT_EQ(saved[q("sizingDescriptions")].toObject().size(), 2);
}

TEST_F(Commands, rollWarnsOfAnEstimatedSize) {
    TiffFixture tiff = picture();
    tiff.density.reset();
    const CommandResult result = runCommand({q("roll"), image("a.tif", tiff), q("-o"), path("roll.pdf")});
    EXPECT_EQ(result.json()[q("warnings")],
              (QJsonArray{q("a.tif：No valid print dimensions reported; estimated at 300 ppi")}));
}

TEST_F(Commands, rollReportsEveryImageThatItCannotImport) {
    folder_.write(q("bad.jpg"), "no image");
    const CommandResult result =
        runCommand({q("roll"), image("a.tif"), path("bad.jpg"), path("none.png"), q("-o"), path("roll.pdf")});
    const QString unreadable = q("Cannot read the image or valid dimensions. Check file integrity and whether the "
                                 "system supports this JPEG, PNG, TIFF or HEIC file.");
    expectRefused(result, q("bad.jpg：") + unreadable + q("\nnone.png：") + unreadable);
    EXPECT_FALSE(QFile::exists(path("roll.pdf")));
}

TEST_F(Commands, noOutputIsWrittenOverAnImage) {
    const QString source = image("a.tif");
    const QByteArray before = test::TemporaryFolder::read(source);
    ASSERT_TRUE(QFile::link(source, path("link.pdf")));
    ASSERT_EQ(::link(source.toLocal8Bit().constData(), path("hard.pdf").toLocal8Bit().constData()), 0);
    const QString message = q("The output location cannot overwrite any input file. Choose a separate file.");
    for (const QString& output : {source, path("link.pdf"), path("hard.pdf"), path("./x/../a.tif")}) {
        expectRefused(runCommand({q("roll"), source, q("-o"), output}), message);
        expectRefused(runCommand({q("roll"), source, q("-o"), path("out.pdf"), q("--layout-out"), output}), message);
    }
    ASSERT_EQ(runCommand({q("roll"), source, q("-o"), path("out.pdf"), q("--layout-out"), path("roll.json")}).status,
              0);
    expectRefused(runCommand({q("pack"), path("roll.json"), q("-o"), path("link.pdf")}), message);
    expectRefused(runCommand({q("preview"), path("roll.json"), q("-o"), path("hard.pdf")}), message);
    expectRefused(runCommand({q("render"), path("roll.json"), q("-o"), path("link.pdf")}),
                  q("The export location cannot overwrite any source artwork. Choose a separate PDF file."));
    EXPECT_EQ(test::TemporaryFolder::read(source), before);
}

TEST_F(Commands, inspectAnswersForEveryImage) {
    TiffFixture tagged = picture();
    tagged.profile = platform::sRgbProfileData();
    const CommandResult result = runCommand({q("inspect"), image("a.tif", tagged), path("none.tif")});
    EXPECT_EQ(result.status, 1);
    const QJsonArray answers = result.json().array();
    ASSERT_EQ(answers.size(), 2);
    EXPECT_EQ(answers[0][q("url")], QUrl::fromLocalFile(path("a.tif")).toString());
    EXPECT_EQ(answers[0][q("pixelWidth")], 300);
    EXPECT_EQ(answers[0][q("pixelHeight")], 200);
    EXPECT_EQ(answers[0][q("originalWidthInches")], 3);
    EXPECT_EQ(answers[0][q("originalHeightInches")], 2);
    EXPECT_EQ(answers[0][q("physicalSizeSource")], q("文件标注 100 ppi"));
    EXPECT_EQ(answers[0][q("profileSHA256")], platform::sha256Hex(platform::sRgbProfileData()));
    EXPECT_EQ(answers[0][q("previewWidth")], 300);
    EXPECT_EQ(answers[0][q("previewHeight")], 200);
    EXPECT_EQ(answers[1].toObject().keys(), (QStringList{q("error"), q("url")}));
}

TEST_F(Commands, inspectReadsAnImageFromStandardInput) {
    const QString file = image("a.tif");
    const CommandResult named = runCommand({q("inspect"), file});
    const CommandResult piped = runCommand({q("inspect"), q("-")}, test::TemporaryFolder::read(file));
    EXPECT_EQ(piped.status, 0) << piped.errors.toStdString();
    QJsonObject expected = named.json().array().first().toObject();
    expected.insert(q("url"), q("-"));
    EXPECT_EQ(piped.json().array().first().toObject(), expected);
}

TEST_F(Commands, iccTellsTheFiveFieldsOfAProfile) {
    folder_.write(q("srgb.icc"), platform::sRgbProfileData());
    const CommandResult result = runCommand({q("icc"), path("srgb.icc")});
    const QJsonObject answer = result.json().object();
    EXPECT_EQ(answer[q("profileClass")], q("mntr"));
    EXPECT_EQ(answer[q("colorModel")], q("RGB"));
    EXPECT_EQ(answer[q("componentCount")], 3);
    EXPECT_EQ(answer[q("sha256")], platform::sha256Hex(platform::sRgbProfileData()));
    EXPECT_EQ(answer.size(), 5);
    folder_.write(q("bad.icc"), QByteArray(200, 'x'));
    expectRefused(runCommand({q("icc"), path("bad.icc")}), q("Invalid ICC header or signature."));
}

TEST_F(Commands, packKeepsTheFormOfTheLayout) {
    ASSERT_EQ(runCommand({q("roll"), image("a.tif"), image("b.tif"), q("-o"), path("roll.pdf"), q("--layout-out"),
                          path("workspace.json")})
                  .status,
              0);
    const QJsonObject workspace = QJsonDocument::fromJson(test::TemporaryFolder::read(path("workspace.json"))).object();
    const QByteArray bare = QJsonDocument(workspace[q("layout")].toObject()).toJson();

    const CommandResult ofWorkspace = runCommand({q("pack"), path("workspace.json"), q("--gap"), q("1")});
    EXPECT_EQ(ofWorkspace.json()[q("version")], 1);
    EXPECT_EQ(ofWorkspace.json()[q("layout")][q("items")][1][q("xInches")], 9);
    const CommandResult ofBare = runCommand({q("pack"), q("-"), q("--gap"), q("1"), q("-o"), path("bare.json")}, bare);
    EXPECT_EQ(ofBare.status, 0);
    EXPECT_EQ(ofBare.output, QByteArray());
    EXPECT_EQ(QJsonDocument::fromJson(test::TemporaryFolder::read(path("bare.json")))[q("items")],
              ofWorkspace.json()[q("layout")][q("items")]);
}

TEST_F(Commands, packRefusesABadGapWithTheWindowsWords) {
    const QByteArray empty = R"({"schemaVersion":1,"items":[]})";
    for (const QString& gap : {q("-1"), q("nan"), q("inf")}) {
        expectRefused(runCommand({q("pack"), q("-"), q("--gap=") + gap}, empty),
                      q("Artwork spacing must be a valid nonnegative value in inches."));
    }
}

TEST_F(Commands, layoutsThatCannotBeReadAreRefusedByTheirKeyPath) {
    expectRefused(runCommand({q("pack"), q("-")}, R"({"schemaVersion":1,"items":[],"widthInches":70})"),
                  q("widthInches: Roll width must be a valid value greater than 5 and no more than 60 inches to retain "
                    "both 2.5-inch white borders."));
    expectRefused(runCommand({q("render"), q("-"), q("-o"), path("o.pdf")}, R"({"schemaVersion":1,"items":[{}]})"),
                  q("items[0].id: The required key is missing."));
    EXPECT_EQ(folder_.names(), QStringList());
}

TEST_F(Commands, renderPrintsTheAudits) {
    ASSERT_EQ(
        runCommand({q("roll"), image("a.tif"), q("-o"), path("roll.pdf"), q("--layout-out"), path("roll.json")}).status,
        0);
    const CommandResult result =
        runCommand({q("render"), path("roll.json"), q("-o"), path("again.pdf"), q("--title"), q("卷布")});
    ASSERT_EQ(result.status, 0) << result.errors.toStdString();
    EXPECT_EQ(result.json()[0][q("renderedBitsPerComponent")], 8);
    EXPECT_EQ(result.json()[0][q("renderedColorModel")], q("RGB"));
    const CommandResult piped = runCommand({q("render"), path("roll.json"), q("-o"), q("-"), q("--title"), q("卷布")});
    EXPECT_EQ(piped.output, test::TemporaryFolder::read(path("again.pdf")));
}

TEST_F(Commands, renderConvertsOnlyWithTheOperatorsConfirmation) {
    TiffFixture tagged = picture();
    tagged.profile = platform::sRgbProfileData();
    const QString icc = folder_.write(q("out.icc"), platform::sRgbProfileData());
    const QStringList roll{q("roll"), image("a.tif", tagged), q("-o"), path("roll.pdf"), q("--output-icc"), icc};
    expectRefused(runCommand(roll), q("To avoid double color management, first turn off color correction in Canon "
                                      "print settings and record your confirmation in the app. This record does not "
                                      "change or verify the driver."));
    EXPECT_EQ(runCommand(roll + QStringList{q("--driver-correction-off"), q("--intent"), q("perceptual")}).status, 0);
}

TEST_F(Commands, userUnitPatchesInPlaceOnce) {
    ASSERT_EQ(runCommand({q("roll"), image("a.tif"), q("-o"), path("roll.pdf")}).status, 0);
    const CommandResult first = runCommand({q("userunit"), path("roll.pdf"), q("2")});
    EXPECT_EQ(first.status, 0) << first.errors.toStdString();
    EXPECT_EQ(first.output, QByteArray());
    const QByteArray patched = test::TemporaryFolder::read(path("roll.pdf"));
    EXPECT_TRUE(patched.contains("/UserUnit 2 >>"));
    expectRefused(runCommand({q("userunit"), path("roll.pdf"), q("2")}),
                  q("Cannot safely write a standard UserUnit into this Quartz PDF. Incorrect long-roll dimensions were "
                    "not saved."));
    EXPECT_EQ(test::TemporaryFolder::read(path("roll.pdf")), patched);
    EXPECT_EQ(folder_.names(), (QStringList{q("a.tif"), q("roll.pdf")}));
}

TEST_F(Commands, checkRefusesAPageOfAnotherSize) {
    ASSERT_EQ(runCommand({q("roll"), image("a.tif"), q("-o"), path("roll.pdf")}).status, 0);
    expectRefused(
        runCommand({q("check"), path("roll.pdf"), q("--width-inches"), q("60"), q("--height-inches"), q("7.001")}),
        q("The saved PDF dimensions do not match the job record. Print was not opened."));
    expectRefused(runCommand({q("check"), path("none.pdf")}),
                  q("Cannot read the PDF to print. The original file and job record were kept."));
}

TEST_F(Commands, checkReadsAPdfFromStandardInput) {
    ASSERT_EQ(runCommand({q("roll"), image("a.tif"), q("-o"), path("roll.pdf")}).status, 0);
    const CommandResult result = runCommand({q("check"), q("-")}, test::TemporaryFolder::read(path("roll.pdf")));
    EXPECT_EQ(result.status, 0) << result.errors.toStdString();
    EXPECT_EQ(result.json().object(),
              (QJsonObject{{q("widthInches"), 60}, {q("heightInches"), 7}, {q("userUnit"), 1}}));
    expectRefused(runCommand({q("check"), q("-")}, "no PDF"),
                  q("Cannot read the PDF to print. The original file and job record were kept."));
}

TEST_F(Commands, previewDrawsAPdfAndALayoutAlike) {
    ASSERT_EQ(
        runCommand({q("roll"), image("a.tif"), q("-o"), path("roll.pdf"), q("--layout-out"), path("roll.json")}).status,
        0);
    ASSERT_EQ(runCommand({q("preview"), path("roll.pdf"), q("-o"), path("p.png"), q("--pixels"), q("600")}).status, 0);
    ASSERT_EQ(runCommand({q("preview"), path("roll.json"), q("-o"), path("l.png"), q("--pixels"), q("600")}).status, 0);
    EXPECT_EQ(test::TemporaryFolder::read(path("p.png")), test::TemporaryFolder::read(path("l.png")));
    EXPECT_TRUE(test::TemporaryFolder::read(path("p.png")).startsWith("\x89PNG\r\n"));
    const QByteArray header = test::TemporaryFolder::read(path("p.png")).mid(16, 8);
    EXPECT_EQ(header.toHex(), "0000025800000046"); // 600 x 70
}

TEST_F(Commands, wrongUsageHasAStatusOfItsOwn) {
    for (const QStringList& arguments :
         {QStringList{},
          {q("nonsense")},
          {q("roll")},
          {q("roll"), q("a.tif")},
          {q("pack"), q("-"), q("--gap"), q("x")},
          {q("inspect")},
          {q("check"), q("a.pdf"), q("--width-inches"), q("60")},
          {q("render"), q("-"), q("-o"), q("x.pdf"), q("--intent"), q("vivid"), q("--output-icc"), q("y")},
          {q("userunit"), q("-"), q("2")},
          {q("preview"), q("a.pdf"), q("-o"), q("a.png"), q("--pixels"), q("0")}}) {
        const CommandResult result = runCommand(arguments);
        EXPECT_EQ(result.status, 2) << arguments.join(u' ').toStdString();
        EXPECT_EQ(result.output, QByteArray());
        EXPECT_TRUE(result.errors.contains(q("usage: orvexctl")));
    }
    EXPECT_EQ(runCommand({}, {}, q("fr")).status, 2);
}

TEST_F(Commands, theLanguageIsThatOfTheMessages) {
    const CommandResult result =
        runCommand({q("pack"), q("-"), q("--gap=-1")}, R"({"schemaVersion":1,"items":[]})", q("zh-Hans"));
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.errors.endsWith(q("。\n"))) << result.errors.toStdString();
    const CommandResult wrongUsage = runCommand({q("roll")}, {}, q("zh-Hans"));
    EXPECT_EQ(wrongUsage.status, 2);
    EXPECT_TRUE(wrongUsage.errors.startsWith(q("用法错误"))) << wrongUsage.errors.toStdString();
    EXPECT_TRUE(wrongUsage.errors.contains(q("用法：orvexctl"))) << wrongUsage.errors.toStdString();
}

TEST_F(Commands, helpIsInTheLanguageThatIsAskedForInEitherForm) {
    const auto help = [](const QStringList& arguments) {
        QProcess process;
        process.start(q(ORVEXCTL), arguments);
        EXPECT_TRUE(process.waitForFinished());
        return process.readAllStandardOutput();
    };
    for (const QString& language : {q("en"), q("zh-Hans")}) {
        EXPECT_EQ(help({q("--language=") + language, q("roll"), q("--help")}),
                  help({q("--language"), language, q("roll"), q("--help")}));
    }
    EXPECT_TRUE(help({q("--language=zh-Hans"), q("roll"), q("--help")}).contains("卷布"));
}

} // namespace
} // namespace orvex
