#include "RollRendering.h"

#include "InChinese.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

namespace orvex {
namespace {

TEST(RollRendering, NamesThePdfAndItsStages) {
    EXPECT_EQ(rollPDFTitle(), u"orvex · Roll Layout");
    EXPECT_EQ(renderStageLabel(RollPDFRenderer::RenderStage::preflight), u"Checking originals");
    EXPECT_EQ(renderStageLabel(RollPDFRenderer::RenderStage::drawing), u"Writing the PDF");
    const test::InChinese chinese;
    EXPECT_EQ(rollPDFTitle(), u"orvex · 卷布排版");
    EXPECT_EQ(renderStageLabel(RollPDFRenderer::RenderStage::preflight), u"检查原图");
    EXPECT_EQ(renderStageLabel(RollPDFRenderer::RenderStage::drawing), u"写入 PDF");
}

TEST(RollRendering, RemovesWhatAFailureLeftIfItCan) {
    const test::TemporaryFolder folder;
    const QUrl file = QUrl::fromLocalFile(folder.write(QStringLiteral("left.pdf"), "x"));
    removeQuietly(file);
    EXPECT_EQ(folder.names(), QStringList());
    EXPECT_NO_THROW(removeQuietly(file)) << "which is gone";
    ASSERT_TRUE(QDir().mkpath(folder.path(QStringLiteral("left.pdf/full"))));
    EXPECT_NO_THROW(removeQuietly(file)) << "which is a folder now";
    EXPECT_EQ(folder.names(), QStringList{QStringLiteral("left.pdf")});
}

} // namespace
} // namespace orvex
