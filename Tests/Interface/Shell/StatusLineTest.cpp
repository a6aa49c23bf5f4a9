#include "Shell/StatusLine.h"

#include "CanvasTest.h"

#include <QTest>

namespace orvex::test {

namespace {

class StatusLineTest : public CanvasTest {
protected:
    std::unique_ptr<StatusLine> line;

    ~StatusLineTest() override { line.reset(); }

    void open() {
        line = std::make_unique<StatusLine>(*model);
        line->resize(1000, 40);
        line->show();
    }

    void show(const std::optional<SessionProgress>& progress) {
        SessionBackdoor::set(model->progress, progress);
        QCoreApplication::processEvents();
    }

    template <typename Widget>
    [[nodiscard]] Widget& find(const char* name) const {
        return *line->findChild<Widget*>(QString::fromLatin1(name));
    }
};

} // namespace

TEST_F(StatusLineTest, TheMessageIsTheSessions) {
    start();
    open();
    EXPECT_EQ(find<QLabel>("statusMessage").text(), model->message());
    SessionBackdoor::set(model->message, QStringLiteral("Done & <b>dusted</b>"));
    QCoreApplication::processEvents();
    EXPECT_EQ(find<QLabel>("statusMessage").text(), QStringLiteral("Done & <b>dusted</b>"));
    EXPECT_EQ(find<QLabel>("statusMessage").textFormat(), Qt::PlainText);
}

TEST_F(StatusLineTest, ProgressShowsOnlyWhileThereIsSome) {
    start();
    open();
    EXPECT_FALSE(find<QProgressBar>("progressBar").isVisible());
    EXPECT_FALSE(find<QPushButton>("cancelOperationButton").isVisible());
    show(SessionProgress{
        .done = 1, .total = 4, .what = QStringLiteral("Adding artworks"), .fraction = 0.25, .isCancellable = true});
    EXPECT_TRUE(find<QProgressBar>("progressBar").isVisible());
    EXPECT_EQ(find<QProgressBar>("progressBar").value(), 250);
    EXPECT_EQ(find<QProgressBar>("progressBar").accessibleName(), QStringLiteral("Adding artworks"));
    show(std::nullopt);
    EXPECT_FALSE(find<QProgressBar>("progressBar").isVisible());
}

TEST_F(StatusLineTest, OnlyWhatCanBeCancelledOffersIt) {
    start();
    open();
    show(SessionProgress{.total = 1, .what = QStringLiteral("x")});
    EXPECT_FALSE(find<QPushButton>("cancelOperationButton").isVisible());
}

TEST_F(StatusLineTest, CancelEndsTheOperation) {
    start();
    open();
    const Barrier barrier;
    model->importFiles({picture(QStringLiteral("a.png"), 100, 80)});
    QCoreApplication::processEvents();
    auto& cancel = find<QPushButton>("cancelOperationButton");
    ASSERT_TRUE(cancel.isVisible());
    QTest::mouseClick(&cancel, Qt::LeftButton);
    QCoreApplication::processEvents();
    EXPECT_FALSE(cancel.isVisible());
}

} // namespace orvex::test
