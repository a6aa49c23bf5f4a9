#include "Workspace/ArtworkListModel.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>

#include <gtest/gtest.h>

namespace orvex {
namespace {

class ArtworkListModelTest : public ::testing::Test {
protected:
    ArtworkListModel model;
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};

    [[nodiscard]] static RollArtwork artwork(int number) {
        return RollArtwork::make({.id = QUuid(static_cast<uint>(number), 1, 1, 1, 1, 1, 1, 1, 1, 1, 1),
                                  .sourceURL = QUrl(QStringLiteral("file:///%1.png").arg(number)),
                                  .pixelWidth = 300,
                                  .pixelHeight = 300});
    }

    [[nodiscard]] static QList<RollArtwork> artworks(const QList<int>& numbers) {
        QList<RollArtwork> made;
        for (const int number : numbers) {
            made.append(artwork(number));
        }
        return made;
    }

    [[nodiscard]] QStringList titles() const {
        QStringList shown;
        for (int row = 0; row < model.rowCount(); ++row) {
            shown.append(model.index(row, 0).data().toString());
        }
        return shown;
    }
};

TEST_F(ArtworkListModelTest, FollowsAnyChangeOfTheArtworks) {
    const QList<QList<int>> lists{{1, 2, 3}, {1, 3}, {1, 2, 3}, {1, 2, 3, 4, 5}, {5, 4, 3}, {9}, {}, {2, 2, 7}};
    for (const QList<int>& numbers : lists) {
        model.setArtworks(artworks(numbers));
        QStringList expected;
        for (const int number : numbers) {
            expected.append(QStringLiteral("%1.png").arg(number));
        }
        EXPECT_EQ(titles(), expected);
    }
}

TEST_F(ArtworkListModelTest, RemovesAndInsertsOnlyTheRowsThatDiffer) {
    model.setArtworks(artworks({1, 2, 3, 4}));
    const QPersistentModelIndex last = model.index(3, 0);
    const QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
    QSignalSpy removals(&model, &QAbstractItemModel::rowsRemoved);
    model.setArtworks(artworks({1, 3, 4}));
    ASSERT_EQ(removals.count(), 1);
    EXPECT_EQ(removals[0].mid(1), (QVariantList{1, 1}));
    EXPECT_EQ(last.row(), 2);
    QSignalSpy insertions(&model, &QAbstractItemModel::rowsInserted);
    model.setArtworks(artworks({1, 2, 5, 3, 4}));
    ASSERT_EQ(insertions.count(), 1);
    EXPECT_EQ(insertions[0].mid(1), (QVariantList{1, 2}));
    EXPECT_EQ(last.row(), 4);
    EXPECT_EQ(resets.count(), 0);
}

TEST_F(ArtworkListModelTest, AnnouncesTheRowsWhoseTextsChange) {
    QList<RollArtwork> changed = artworks({1, 2, 3});
    model.setArtworks(changed);
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    changed[0].yInches = 5.0;
    model.setArtworks(changed);
    EXPECT_EQ(changes.count(), 0);
    EXPECT_EQ(model.artwork(0).yInches, 5.0);
    changed[1].title = QStringLiteral("other.png");
    changed[2].rotationQuarterTurns = 1;
    model.setArtworks(changed);
    ASSERT_EQ(changes.count(), 2);
    EXPECT_EQ(changes[0][0].toModelIndex(), model.index(1, 0));
    EXPECT_EQ(changes[1][0].toModelIndex(), model.index(2, 0));
}

TEST_F(ArtworkListModelTest, FindsTheRowOfAnArtwork) {
    model.setArtworks(artworks({1, 2}));
    EXPECT_EQ(model.rowOf(artwork(2).id), 1);
    EXPECT_EQ(model.rowOf(artwork(3).id), -1);
    EXPECT_EQ(model.rowOf(std::nullopt), -1);
}

} // namespace
} // namespace orvex
