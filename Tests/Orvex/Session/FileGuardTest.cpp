#include "FileGuard.h"

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

class OwnData : public ::testing::Test {
protected:
    OwnData() {
        qputenv("XDG_DATA_HOME", folder.path().toUtf8());
        QDir(folder.path()).mkpath(QStringLiteral("ORVEX/presets"));
    }

    test::TemporaryFolder folder;

    [[nodiscard]] std::optional<QString> refusal(const QString& name) const {
        return failureMessageOf([&] { refuseOverwritingOwnData(QUrl::fromLocalFile(folder.path(name))); });
    }
};

TEST_F(OwnData, IsNotWrittenOver) {
    const QString refused =
        QStringLiteral("The chosen location cannot overwrite the program's own data. Choose another file.");
    EXPECT_EQ(refusal(QStringLiteral("ORVEX/queue.json")), refused);
    EXPECT_EQ(refusal(QStringLiteral("ORVEX/presets/icc.icc")), refused);
    EXPECT_EQ(refusal(QStringLiteral("ORVEX/8F2B1C6E-3D4A-4B5C-9E6F-7A8B9C0D1E2F.pdf")), refused);
    ASSERT_TRUE(QFile::link(folder.path(QStringLiteral("ORVEX/queue.json")), folder.path(QStringLiteral("link.json"))));
    folder.write(QStringLiteral("ORVEX/queue.json"), "[]");
    EXPECT_EQ(refusal(QStringLiteral("link.json")), refused);
    const test::InChinese chinese;
    EXPECT_EQ(refusal(QStringLiteral("ORVEX/queue.json")), u"保存位置不能覆盖应用自身的数据文件。请另选一个文件。");
}

TEST_F(OwnData, LeavesOtherFilesFree) {
    EXPECT_EQ(refusal(QStringLiteral("queue.json")), std::nullopt);
    EXPECT_EQ(refusal(QStringLiteral("ORVEX/my roll.pdf")), std::nullopt);
}

} // namespace
} // namespace orvex
