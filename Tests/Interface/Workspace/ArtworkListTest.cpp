#include "Workspace/ArtworkList.h"

#include "InChinese.h"
#include "PanelFixture.h"
#include "Theme/OrvexTheme.h"
#include "Workspace/ArtworkListModel.h"

#include <QScrollBar>
#include <QSignalSpy>

namespace orvex {
namespace {

class ArtworkListTest : public test::CanvasPanelTest<ArtworkList> {
protected:
    [[nodiscard]] QTableView& table() const { return find<QTableView>("artworkTable"); }

    [[nodiscard]] QModelIndex cell(int row, int column = ArtworkListModel::artworkColumn) const {
        return table().model()->index(row, column);
    }

    [[nodiscard]] QModelIndex removal(int row) const { return cell(row, ArtworkListModel::removalColumn); }

    [[nodiscard]] QString textIn(const QModelIndex& index, int role) const { return index.data(role).toString(); }

    void click(const QModelIndex& index) {
        QTest::mouseClick(table().viewport(), Qt::LeftButton, {}, table().visualRect(index).center());
        announced();
    }

    void press(const QModelIndex& index, Qt::Key key) {
        table().setFocus();
        table().setCurrentIndex(index);
        QTest::keyClick(&table(), key);
        announced();
    }

    [[nodiscard]] QList<int> markedRows() const {
        QList<int> rows;
        for (const QModelIndex& index : table().selectionModel()->selectedRows()) {
            rows.append(index.row());
        }
        return rows;
    }

    [[nodiscard]] bool isInView(const QModelIndex& index) const {
        return table().viewport()->rect().contains(table().visualRect(index));
    }

    /// What is drawn in the middle of an artwork's picture.
    [[nodiscard]] QColor thumbnailColor(int row) const {
        const QRect place = table().visualRect(cell(row));
        const QImage image = table().viewport()->grab(place).toImage();
        return image.pixelColor(29, place.height() / 2);
    }

    /// Whether anything is drawn where the picture of the first artwork belongs.
    [[nodiscard]] bool isThumbnailDrawn() const {
        const QRect place(table().visualRect(cell(0)).topLeft(), QSize(48, table().rowHeight(0)));
        const QImage drawn = table().viewport()->grab(place).toImage();
        for (int x = 12; x < 48; ++x) {
            if (drawn.pixelColor(x, place.height() / 2) != drawn.pixelColor(47, 3)) {
                return true;
            }
        }
        return false;
    }

    /// Does something that must remove the first of two artworks, and nothing else.
    void expectFirstRemoved(const std::function<void()>& act) {
        openWith(2);
        const QUuid other = idOf(1);
        act();
        settle();
        announced();
        ASSERT_EQ(model->rollLayout().items.size(), 1);
        EXPECT_EQ(idOf(0), other);
        EXPECT_EQ(table().model()->rowCount(), 1);
        EXPECT_TRUE(model->rollUndoAvailable());
    }
};

TEST_F(ArtworkListTest, TellsHowManyArtworksThereAre) {
    openWith(2);
    EXPECT_TRUE(shows("All Artworks · 2"));
    EXPECT_TRUE(shows("Click × to remove an artwork from this layout. The others automatically pack into the space at "
                      "their current sizes. Undo in one step."));
    EXPECT_EQ(table().accessibleName(), QStringLiteral("All Artworks · 2"));
    openWith(0);
    EXPECT_TRUE(shows("All Artworks · 0"));
    EXPECT_FALSE(table().isVisible());
    const test::InChinese chinese;
    open();
    EXPECT_TRUE(shows("全部作品 · 0"));
    EXPECT_TRUE(shows("点击 × 可从当前排版中移除作品，其余作品按现有尺寸自动补位，可一步撤销。"));
}

TEST_F(ArtworkListTest, HasARowForEachArtwork) {
    openWith(2);
    ASSERT_EQ(table().model()->rowCount(), 2);
    EXPECT_EQ(textIn(cell(0), Qt::DisplayRole), QStringLiteral("nowhere.png"));
    EXPECT_EQ(textIn(cell(0), ArtworkListModel::sizeRole), QStringLiteral("12.00 × 8.00 in"));
    EXPECT_EQ(textIn(cell(0), Qt::AccessibleTextRole), QStringLiteral("nowhere.png, 12.00 × 8.00 in"));
}

TEST_F(ArtworkListTest, NamesAndExplainsTheRemoval) {
    openWith(1);
    const QString help =
        QStringLiteral("Remove from this layout, fill the gap, and shorten the roll automatically. The "
                       "original file is retained. You can undo this.");
    EXPECT_EQ(textIn(removal(0), Qt::AccessibleTextRole), QStringLiteral("Remove and repack: nowhere.png"));
    EXPECT_EQ(textIn(removal(0), Qt::ToolTipRole), help);
    EXPECT_EQ(textIn(removal(0), Qt::AccessibleDescriptionRole), help);
    const test::InChinese chinese;
    EXPECT_EQ(textIn(removal(0), Qt::AccessibleTextRole), QStringLiteral("移除并自动补位：nowhere.png"));
    EXPECT_EQ(textIn(removal(0), Qt::ToolTipRole),
              QStringLiteral("从当前排版中移除并自动补位、缩短卷布。原文件会保留，可以撤销。"));
}

TEST_F(ArtworkListTest, ShowsANameInATooltipAsItStands) {
    openWith(1);
    RollArtwork hostile = item(0);
    hostile.title = QStringLiteral("<img src=x> & co");
    put(model->rollLayout, RollLayout({hostile}));
    EXPECT_EQ(textIn(cell(0), Qt::ToolTipRole),
              QStringLiteral("<p style='white-space:pre-wrap'>&lt;img src=x&gt; &amp; co</p>"));
}

TEST_F(ArtworkListTest, SelectsAsAClickOnTheBoardDoes) {
    openWith(3);
    const int request = model->rollKeyboardFocusRequest();
    click(cell(0));
    EXPECT_EQ(model->selectedArtworkID(), idOf(0));
    EXPECT_EQ(model->rollKeyboardFocusRequest(), request + 1);
    EXPECT_EQ(autosaved().selection, idOf(0));
    EXPECT_EQ(markedRows(), QList{0});
}

TEST_F(ArtworkListTest, SelectsByTheKeyboard) {
    openWith(3);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        put(model->selectedArtworkID, std::optional(idOf(2)));
        press(cell(1), key);
        EXPECT_EQ(model->selectedArtworkID(), idOf(1));
    }
}

TEST_F(ArtworkListTest, MovesThroughTheRowsWithoutSelecting) {
    openWith(3);
    press(cell(0), Qt::Key_Down);
    EXPECT_EQ(table().currentIndex(), cell(1));
    press(cell(1), Qt::Key_Right);
    EXPECT_EQ(table().currentIndex(), removal(1));
    EXPECT_EQ(model->selectedArtworkID(), idOf(2));
    EXPECT_EQ(markedRows(), QList{2});
}

TEST_F(ArtworkListTest, RemovesByTheMouse) {
    expectFirstRemoved([this] { click(removal(0)); });
}

TEST_F(ArtworkListTest, TheSecondOfTwoQuickClicksDoesNotRemoveTheNextArtwork) {
    expectFirstRemoved([this] {
        const QPoint place = table().visualRect(removal(0)).center();
        click(removal(0));
        QMouseEvent second(QEvent::MouseButtonDblClick, place, table().viewport()->mapToGlobal(place), Qt::LeftButton,
                           Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(table().viewport(), &second);
        QTest::mouseRelease(table().viewport(), Qt::LeftButton, {}, place);
    });
}

TEST_F(ArtworkListTest, RemovesByReturnOnTheRemoval) {
    expectFirstRemoved([this] { press(removal(0), Qt::Key_Return); });
}

TEST_F(ArtworkListTest, RemovesBySpaceOnTheRemoval) {
    expectFirstRemoved([this] { press(removal(0), Qt::Key_Space); });
}

TEST_F(ArtworkListTest, RemovesARowByDelete) {
    expectFirstRemoved([this] { press(cell(0), Qt::Key_Delete); });
}

TEST_F(ArtworkListTest, LeavesKeysWithModifiersAlone) {
    openWith(2);
    table().setCurrentIndex(cell(0));
    QTest::keyClick(&table(), Qt::Key_Delete, Qt::ShiftModifier);
    settle();
    EXPECT_EQ(model->rollLayout().items.size(), 2);
}

TEST_F(ArtworkListTest, KeepsTheKeyboardAtItsPlaceWhenARowGoes) {
    openWith(5); // the last one is selected
    press(cell(1), Qt::Key_Delete);
    settle();
    announced();
    EXPECT_EQ(table().currentIndex(), cell(1));
    EXPECT_EQ(markedRows(), QList{3});
    press(removal(2), Qt::Key_Delete);
    settle();
    announced();
    EXPECT_EQ(table().currentIndex(), removal(2));
}

TEST_F(ArtworkListTest, MarksTheSelectedArtworkAndBringsItIntoView) {
    openWith(40);
    EXPECT_EQ(markedRows(), QList{39});
    EXPECT_TRUE(isInView(cell(39)));
    put(model->selectedArtworkID, std::optional(idOf(2)));
    EXPECT_EQ(markedRows(), QList{2});
    EXPECT_TRUE(isInView(cell(2)));
    put(model->selectedArtworkID, std::optional<QUuid>());
    EXPECT_EQ(markedRows(), QList<int>());
}

TEST_F(ArtworkListTest, IsNotScrolledByChangesThatAreNoSelection) {
    openWith(40);
    table().verticalScrollBar()->setValue(0);
    RollLayout moved = model->rollLayout();
    moved.items[39].xInches += 1.0;
    put(model->rollLayout, moved);
    EXPECT_EQ(table().verticalScrollBar()->value(), 0);
}

TEST_F(ArtworkListTest, HoldsStillWhileAnArtworkIsDragged) {
    openWith(3);
    const QSignalSpy resets(table().model(), &QAbstractItemModel::modelReset);
    const QSignalSpy removals(table().model(), &QAbstractItemModel::rowsRemoved);
    const QSignalSpy insertions(table().model(), &QAbstractItemModel::rowsInserted);
    const QSignalSpy changes(table().model(), &QAbstractItemModel::dataChanged);
    RollLayout moved = model->rollLayout();
    moved.items[1].xInches += 1.0;
    put(model->rollLayout, moved);
    EXPECT_EQ(resets.count() + removals.count() + insertions.count() + changes.count(), 0);
    moved.items[1].widthInches = 6.0;
    put(model->rollLayout, moved);
    EXPECT_EQ(resets.count() + removals.count() + insertions.count(), 0);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(textIn(cell(1), ArtworkListModel::sizeRole), QStringLiteral("6.00 × 4.00 in"));
}

TEST_F(ArtworkListTest, IsAsHighAsItsRowsUpToALimit) {
    openWith(2);
    const int two = table().height();
    openWith(4);
    EXPECT_EQ(table().height(), 2 * two);
    openWith(40);
    const int many = table().height();
    openWith(41);
    EXPECT_EQ(table().height(), many);
    EXPECT_LT(many, 20 * two);
}

TEST_F(ArtworkListTest, DrawsThePicturesThatItIsGiven) {
    openWith(2);
    const QUuid first = idOf(0);
    QList<int> sides;
    panel->setThumbnails([&](const RollArtwork& each, int longestSidePixels) {
        sides.append(longestSidePixels);
        QImage picture(longestSidePixels, longestSidePixels, QImage::Format_RGB32);
        picture.fill(Qt::green);
        return each.id == first ? std::optional(picture) : std::nullopt;
    });
    EXPECT_EQ(thumbnailColor(0), QColor(Qt::green));
    EXPECT_NE(thumbnailColor(1), QColor(Qt::green));
    EXPECT_FALSE(sides.isEmpty());
    EXPECT_EQ(sides.count(sides.first()), sides.size());
}

TEST_F(ArtworkListTest, DrawsASymbolForAPictureThatIsMissing) {
    openWith(1);
    EXPECT_TRUE(isThumbnailDrawn());
}

TEST_F(ArtworkListTest, DrawsNothingWhileAPictureIsMade) {
    openWith(1);
    panel->setThumbnails([](const RollArtwork&, int) { return QImage(); });
    EXPECT_FALSE(isThumbnailDrawn());
}

TEST_F(ArtworkListTest, DrawsThePicturesAnewWhenTheyHaveChanged) {
    openWith(1);
    int asked = 0;
    panel->setThumbnails([&asked](const RollArtwork&, int) {
        ++asked;
        return QImage();
    });
    QTest::qWait(50);
    asked = 0;
    panel->thumbnailsChanged();
    test::waitFor([&asked] { return asked > 0; });
    EXPECT_EQ(asked, 1);
}

TEST_F(ArtworkListTest, AsksOnlyForPicturesInView) {
    openWith(500);
    QSet<QUuid> asked;
    panel->setThumbnails([&asked](const RollArtwork& each, int) {
        asked.insert(each.id);
        return QImage();
    });
    test::waitFor([&asked] { return !asked.isEmpty(); });
    EXPECT_LE(asked.size(), 10);
}

TEST_F(ArtworkListTest, IsLeftByTab) {
    openWith(3);
    EXPECT_FALSE(table().tabKeyNavigation());
    EXPECT_EQ(tabOrder(), QStringList{QStringLiteral("artworkTable")});
}

} // namespace
} // namespace orvex
