#include "SourceFiles.h"

#include "InChinese.h"
#include "OrvexError.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

class SourceFiles : public ::testing::Test {
protected:
    test::TemporaryFolder folder;
    QString source = folder.write(QStringLiteral("a.png"), "picture");

    [[nodiscard]] RollLayout layout() const {
        return RollLayout({RollArtwork::make({.id = QUuid::createUuid(),
                                              .sourceURL = QUrl::fromLocalFile(source),
                                              .pixelWidth = 10,
                                              .pixelHeight = 10})});
    }

    /// The message of the refusal, or nothing.
    [[nodiscard]] std::optional<QString> refusal(const QString& to) const {
        return failureMessageOf([&] { refuseOverwritingSources(QUrl::fromLocalFile(to), layout()); });
    }
};

const QString english =
    QStringLiteral("The chosen location cannot overwrite the original of an artwork. Choose a separate file.");

TEST_F(SourceFiles, AreNotWrittenOverByWhateverPathOrLink) {
    ASSERT_TRUE(QFile::link(source, folder.path(QStringLiteral("link"))));
    EXPECT_EQ(refusal(source), english);
    EXPECT_EQ(refusal(folder.path(QStringLiteral("none/../a.png"))), english);
    EXPECT_EQ(refusal(folder.path(QStringLiteral("link"))), english);
    const test::InChinese chinese;
    EXPECT_EQ(refusal(source), u"保存位置不能覆盖作品的原图。请另选一个文件。");
}

TEST_F(SourceFiles, LeaveOtherPlacesFree) {
    EXPECT_EQ(refusal(folder.path(QStringLiteral("b.png"))), std::nullopt);
    EXPECT_EQ(refusal(folder.write(QStringLiteral("copy.png"), "picture")), std::nullopt);
    EXPECT_NO_THROW(refuseOverwritingSources(QUrl::fromLocalFile(source), RollLayout()));
}

} // namespace
} // namespace orvex
