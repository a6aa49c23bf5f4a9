#include "PDF/PdfWriter.h"

#include "Imaging/MemoryRaster.h"
#include "QpdfReading.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

namespace orvex::platform {
namespace {

using test::QpdfReading;

constexpr PixelFormat rgb8{.model = ColorModel::rgb};

class PdfWriterTest : public ::testing::Test {
protected:
    /// A finished document whose images `addImages` adds.
    template <typename AddImages>
    QpdfReading written(AddImages addImages) {
        FileReplacer file = FileReplacer::open(path_);
        PdfWriter writer(file);
        addImages(writer);
        writer.finish(page_, "q Q\n");
        file.commit();
        return QpdfReading(path_);
    }

    test::TemporaryFolder folder_;
    QString path_ = folder_.path(QStringLiteral("out.pdf"));
    PdfPage page_{.widthPoints = 4320, .heightPoints = 14400.5, .title = QStringLiteral("Roll"), .creator = {}};
};

TEST_F(PdfWriterTest, writesOnePageOfTheAskedSize) {
    QpdfReading pdf = written([](PdfWriter&) {});
    EXPECT_EQ(pdf.pageCount(), 1U);
    EXPECT_EQ(pdf.mediaBox(), (std::vector<double>{0, 0, 4320, 14400.5}));
    EXPECT_EQ(pdf.content(), "q Q\n");
}

TEST_F(PdfWriterTest, saysTitleAndCreatorButNoDates) {
    page_.creator = QStringLiteral("orvex · Roll");
    QpdfReading pdf = written([](PdfWriter&) {});
    QPDFObjectHandle information = pdf.trailer().getKey("/Info");
    EXPECT_EQ(information.getKey("/Title").getUTF8Value(), "Roll");
    EXPECT_EQ(information.getKey("/Creator").getUTF8Value(), "orvex · Roll");
    EXPECT_EQ(information.getDictAsMap().size(), 2U);
}

TEST_F(PdfWriterTest, keepsTheShapeThatLaterAmendmentsNeed) {
    written([](PdfWriter&) {});
    const QByteArray bytes = test::TemporaryFolder::read(path_);
    EXPECT_TRUE(bytes.startsWith("%PDF-1.5\n"));
    EXPECT_TRUE(bytes.contains("\n3 0 obj\n<< /Type /Page /Parent"));
    EXPECT_EQ(bytes.count("\nxref\n0 "), 1);
    EXPECT_TRUE(bytes.contains("\n0000000000 65535 f \n"));
    EXPECT_FALSE(bytes.contains('\r'));
    EXPECT_TRUE(bytes.endsWith("\n%%EOF\n"));
}

TEST_F(PdfWriterTest, embedsARasterAtFullSizeInItsOwnColourSpace) {
    const QByteArray pixels("\1\2\3\4\5\6\7\x08\x09\x0a\x0b\x0c");
    const QByteArray profile("not looked at here");
    QpdfReading pdf =
        written([&](PdfWriter& writer) { (void)writer.addImage(memoryRaster(2, 2, rgb8, profile, pixels)); });
    QPDFObjectHandle image = pdf.images().at(0);
    QPDFObjectHandle dictionary = image.getDict();
    EXPECT_EQ(dictionary.getKey("/Width").getIntValue(), 2);
    EXPECT_EQ(dictionary.getKey("/Height").getIntValue(), 2);
    EXPECT_EQ(dictionary.getKey("/BitsPerComponent").getIntValue(), 8);
    EXPECT_TRUE(dictionary.getKey("/Interpolate").getBoolValue());
    EXPECT_EQ(QpdfReading::data(image), pixels);
    QPDFObjectHandle space = dictionary.getKey("/ColorSpace").getArrayItem(1);
    EXPECT_EQ(space.getDict().getKey("/N").getIntValue(), 3);
    EXPECT_EQ(QpdfReading::data(space), profile);
}

TEST_F(PdfWriterTest, usesTheDeviceSpaceOfAnUntaggedRaster) {
    QpdfReading pdf = written([](PdfWriter& writer) {
        (void)writer.addImage(memoryRaster(1, 1, {.model = ColorModel::gray}, {}, QByteArray("\1")));
        (void)writer.addImage(memoryRaster(1, 1, rgb8, {}, QByteArray("\1\2\3")));
        (void)writer.addImage(memoryRaster(1, 1, {.model = ColorModel::cmyk}, {}, QByteArray("\1\2\3\4")));
    });
    std::vector<std::string> spaces;
    for (auto& image : pdf.images()) {
        spaces.push_back(image.getDict().getKey("/ColorSpace").getName());
    }
    EXPECT_EQ(spaces, (std::vector<std::string>{"/DeviceGray", "/DeviceRGB", "/DeviceCMYK"}));
}

TEST_F(PdfWriterTest, holdsEqualProfilesOnce) {
    QpdfReading pdf = written([](PdfWriter& writer) {
        for (const char* profile : {"A", "B", "A"}) {
            (void)writer.addImage(memoryRaster(1, 1, rgb8, QByteArray(profile), QByteArray("\1\2\3")));
        }
    });
    std::vector<int> objects;
    for (auto& image : pdf.images()) {
        objects.push_back(image.getDict().getKey("/ColorSpace").getArrayItem(1).getObjectID());
    }
    std::sort(objects.begin(), objects.end());
    EXPECT_EQ(objects[0], objects[1]); // the profile that came first, twice
    EXPECT_NE(objects[1], objects[2]);
}

TEST_F(PdfWriterTest, makesAlphaASoftMaskOfTheSameDepth) {
    const PixelFormat format{.model = ColorModel::gray, .bitsPerComponent = 16, .hasAlpha = true};
    QpdfReading pdf = written([&](PdfWriter& writer) {
        (void)writer.addImage(memoryRaster(1, 1, format, {}, QByteArray("\x02\x01\x04\x03")));
    });
    QPDFObjectHandle image = pdf.images().at(0);
    QPDFObjectHandle mask = image.getDict().getKey("/SMask");
    EXPECT_EQ(QpdfReading::data(image), QByteArray("\x01\x02"));
    EXPECT_EQ(QpdfReading::data(mask), QByteArray("\x03\x04"));
    EXPECT_EQ(mask.getDict().getKey("/BitsPerComponent").getIntValue(), 16);
    EXPECT_EQ(mask.getDict().getKey("/ColorSpace").getName(), "/DeviceGray");
}

TEST_F(PdfWriterTest, countsBothReadingsOfARasterWithAlphaForHalf) {
    constexpr PixelFormat format{.model = ColorModel::gray, .hasAlpha = true};
    std::vector<std::pair<qint64, qint64>> told;
    (void)written([&](PdfWriter& writer) {
        const auto progress = [&](qint64 done, qint64 count) { told.emplace_back(done, count); };
        (void)writer.addImage(memoryRaster(1, 400, format, {}, QByteArray(800, '\1')), {}, progress);
    });
    EXPECT_EQ(told, (std::vector<std::pair<qint64, qint64>>{
                        {0, 400}, {128, 400}, {200, 400}, {200, 400}, {328, 400}, {400, 400}}));
}

EncodedStream streamOf(const QByteArray& bytes) {
    EncodedStream stream;
    stream.width = 3;
    stream.height = 2;
    stream.copy = [bytes](const auto& sink) {
        sink(std::as_bytes(std::span(bytes.constData(), 2)));
        sink(std::as_bytes(std::span(bytes.constData() + 2, static_cast<std::size_t>(bytes.size() - 2))));
    };
    return stream;
}

TEST_F(PdfWriterTest, copiesAJpegStreamByteForByte) {
    EncodedStream stream = streamOf("JPEG bytes");
    stream.model = ColorModel::cmyk;
    stream.isInverted = true;
    stream.dctColorTransform = 1;
    QpdfReading pdf = written([&](PdfWriter& writer) { (void)writer.addImage(stream, {}); });
    QPDFObjectHandle image = pdf.images().at(0);
    QPDFObjectHandle dictionary = image.getDict();
    EXPECT_EQ(QpdfReading::rawData(image), "JPEG bytes");
    EXPECT_EQ(dictionary.getKey("/Filter").getName(), "/DCTDecode");
    EXPECT_EQ(dictionary.getKey("/DecodeParms").getKey("/ColorTransform").getIntValue(), 1);
    EXPECT_EQ(dictionary.getKey("/Decode").unparse(), "[ 1 0 1 0 1 0 1 0 ]");
}

TEST_F(PdfWriterTest, namesThePredictorOfAPngStream) {
    EncodedStream stream = streamOf("deflated rows");
    stream.filter = EncodedStream::Filter::flatePng;
    stream.bitsPerComponent = 16;
    QpdfReading pdf = written([&](PdfWriter& writer) { (void)writer.addImage(stream, {}); });
    QPDFObjectHandle dictionary = pdf.images().at(0).getDict();
    QPDFObjectHandle parameters = dictionary.getKey("/DecodeParms");
    EXPECT_EQ(dictionary.getKey("/Filter").getName(), "/FlateDecode");
    EXPECT_EQ(parameters.getKey("/Predictor").getIntValue(), 15);
    EXPECT_EQ(parameters.getKey("/Colors").getIntValue(), 3);
    EXPECT_EQ(parameters.getKey("/BitsPerComponent").getIntValue(), 16);
    EXPECT_EQ(parameters.getKey("/Columns").getIntValue(), 3);
    EXPECT_FALSE(dictionary.hasKey("/Decode"));
}

TEST_F(PdfWriterTest, writesAPaletteAsAnIndexedSpace) {
    EncodedStream stream = streamOf("deflated indices");
    stream.filter = EncodedStream::Filter::flatePng;
    stream.bitsPerComponent = 4;
    stream.palette = QByteArray("\x01\x02\x03\xff\xfe\xfd");
    QpdfReading pdf = written([&](PdfWriter& writer) { (void)writer.addImage(stream, {}); });
    QPDFObjectHandle dictionary = pdf.images().at(0).getDict();
    QPDFObjectHandle space = dictionary.getKey("/ColorSpace");
    EXPECT_EQ(space.getArrayItem(0).getName(), "/Indexed");
    EXPECT_EQ(space.getArrayItem(1).getName(), "/DeviceRGB");
    EXPECT_EQ(space.getArrayItem(2).getIntValue(), 1);
    EXPECT_EQ(space.getArrayItem(3).getStringValue(), "\x01\x02\x03\xff\xfe\xfd");
    EXPECT_EQ(dictionary.getKey("/DecodeParms").getKey("/Colors").getIntValue(), 1);
}

TEST_F(PdfWriterTest, givesTheSameBytesForTheSameContent) {
    const auto addImage = [](PdfWriter& writer) {
        (void)writer.addImage(memoryRaster(1, 1, rgb8, {}, QByteArray("\1\2\3")));
    };
    written(addImage);
    const QByteArray first = test::TemporaryFolder::read(path_);
    written(addImage);
    EXPECT_EQ(test::TemporaryFolder::read(path_), first);
}

TEST_F(PdfWriterTest, identifiesTheFileByItsContent) {
    const auto identifier = [this](const QByteArray& pixel) {
        QpdfReading pdf =
            written([&](PdfWriter& writer) { (void)writer.addImage(memoryRaster(1, 1, rgb8, {}, pixel)); });
        return pdf.trailer().getKey("/ID").getArrayItem(0).getStringValue();
    };
    EXPECT_EQ(identifier("\1\2\3").size(), 16U);
    EXPECT_NE(identifier("\1\2\3"), identifier("\1\2\4"));
}

} // namespace
} // namespace orvex::platform
