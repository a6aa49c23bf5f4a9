#include "CanvasPreference.h"

#include "DamagedFile.h"
#include "Files/FileSystemError.h"
#include "Json/JsonError.h"
#include "MutatedBytes.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace orvex {

namespace {

const QString fileName = QStringLiteral("canvas-default.json");

CanvasPreference preference() {
    return {.printerName = QStringLiteral("W9400"),
            .presetID = QUuid::fromString(u"9b2f4e1c-0d3a-4b5c-8d6e-7f8091a2b3c4")};
}

class CanvasPreferenceTest : public ::testing::Test {
protected:
    [[nodiscard]] QUrl url() const { return CanvasPreference::url(QUrl::fromLocalFile(folder_.path())); }

    [[nodiscard]] QByteArray content() const { return test::TemporaryFolder::read(folder_.path(fileName)); }

    [[nodiscard]] std::string loadingFailure(const QByteArray& written) const {
        folder_.write(fileName, written);
        std::string message = "(none)";
        try {
            (void)CanvasPreference::load(url());
        } catch (const platform::JsonError& error) {
            message = error.message().toStdString();
        }
        EXPECT_EQ(content(), written);
        return message;
    }

    test::TemporaryFolder folder_;
};

} // namespace

TEST_F(CanvasPreferenceTest, LiesInTheFolderOfTheQueue) {
    EXPECT_EQ(url().toLocalFile(), folder_.path(fileName));
    EXPECT_EQ(CanvasPreference::url(QUrl(QStringLiteral("file:///a/b%20c/"))).toString(QUrl::FullyEncoded),
              QStringLiteral("file:///a/b%20c/canvas-default.json"));
}

TEST_F(CanvasPreferenceTest, IsWrittenPlainly) {
    preference().save(url());
    EXPECT_EQ(content(), R"({"presetID":"9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4","printerName":"W9400"})");
    CanvasPreference odd = preference();
    odd.printerName = QStringLiteral("画/\"1\"");
    odd.save(url());
    EXPECT_EQ(content(), R"({"presetID":"9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4","printerName":"画\/\"1\""})");
    EXPECT_EQ(folder_.names(), QStringList{fileName});
}

TEST_F(CanvasPreferenceTest, IsReadAsWritten) {
    preference().save(url());
    EXPECT_EQ(CanvasPreference::load(url()), preference());
}

TEST_F(CanvasPreferenceTest, IsReadInEverySpelling) {
    folder_.write(fileName, "\xEF\xBB\xBF{\n  \"printerName\" : \"W9\\u0034\\u0030\\/0\",\n  \"later\" : [1],\n"
                            "  \"presetID\" : \"9b2f4e1c-0d3a-4b5c-8d6e-7f8091a2b3c4\"\n}\n");
    CanvasPreference expected = preference();
    expected.printerName = QStringLiteral("W940/0");
    EXPECT_EQ(CanvasPreference::load(url()), expected);
}

TEST_F(CanvasPreferenceTest, IsAbsentWithoutItsFile) {
    EXPECT_EQ(CanvasPreference::load(url()), std::nullopt);
    EXPECT_EQ(CanvasPreference::load(CanvasPreference::url(QUrl::fromLocalFile(folder_.path(QStringLiteral("no"))))),
              std::nullopt);
}

TEST_F(CanvasPreferenceTest, IsRefusedWithoutAKeyOrWithAnotherType) {
    EXPECT_EQ(loadingFailure(R"({"presetID":"9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4"})"),
              "printerName: The required key is missing.");
    EXPECT_EQ(loadingFailure(R"({"printerName":"W9400"})"), "presetID: The required key is missing.");
    EXPECT_EQ(loadingFailure(R"({"printerName":7,"presetID":"9B2F4E1C-0D3A-4B5C-8D6E-7F8091A2B3C4"})"),
              "printerName: Expected text.");
    EXPECT_EQ(loadingFailure(R"({"printerName":"W9400","presetID":"9400"})"), "presetID: Expected a UUID.");
    EXPECT_EQ(loadingFailure("[]"), "Expected an object.");
    EXPECT_NE(loadingFailure(""), "(none)");
}

TEST_F(CanvasPreferenceTest, IsRefusedCutAnywhere) {
    preference().save(url());
    const QByteArray whole = content();
    for (qsizetype size = 0; size < whole.size(); ++size) {
        EXPECT_NE(loadingFailure(whole.first(size)), "(none)") << size;
    }
}

TEST_F(CanvasPreferenceTest, IsRefusedOrReadAndStaysWhateverItsBytes) {
    preference().save(url());
    test::Mutations mutations(20260104);
    test::DamagedFile file(folder_, fileName);
    file.expectRefusedOrRead([&](const QByteArray& good) { return mutations.ofJson(good); },
                             [&] { static_cast<void>(CanvasPreference::load(url())); }, {});
    constexpr int some = 500; // so that both outcomes are tried
    EXPECT_GT(file.refusedCount(), some);
    EXPECT_GT(file.readCount(), some);
}

TEST_F(CanvasPreferenceTest, IsNotReadIfItIsFarTooLarge) {
    folder_.write(fileName, QByteArray((1 << 16) + 1, ' '));
    try {
        (void)CanvasPreference::load(url());
        ADD_FAILURE() << "it is read";
    } catch (const platform::FileSystemError& error) {
        EXPECT_EQ(error.code(), EFBIG);
    }
}

TEST_F(CanvasPreferenceTest, IsNotWrittenIfItCouldNotBeReadAgain) {
    preference().save(url());
    CanvasPreference large = preference();
    large.printerName = QString(1 << 16, u'x');
    EXPECT_THROW(large.save(url()), platform::FileSystemError);
    EXPECT_EQ(CanvasPreference::load(url()), preference());
}

TEST_F(CanvasPreferenceTest, KeepsItsFileIfItCannotBeWritten) {
    ASSERT_TRUE(QDir().mkpath(folder_.path(fileName)));
    EXPECT_THROW(preference().save(url()), platform::FileSystemError);
    EXPECT_THROW((void)CanvasPreference::load(url()), platform::FileSystemError);
    EXPECT_EQ(folder_.names(), QStringList{fileName});
}

} // namespace orvex
