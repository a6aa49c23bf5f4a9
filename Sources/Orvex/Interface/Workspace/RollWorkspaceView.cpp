#include "RollWorkspaceView.h"

#include "Board/RollBoardView.h"
#include "Controls/Controls.h"
#include "Workspace/ArtworkInspector.h"
#include "Workspace/ArtworkList.h"
#include "Workspace/RollHelpLines.h"
#include "Workspace/RollSummaryView.h"
#include "Workspace/RollToolBar.h"

#include <QScrollBar>
#include <QSplitter>

namespace orvex {

namespace {

constexpr int sideColumnWidth = 340;

} // namespace

RollWorkspaceView::RollWorkspaceView(OrvexModel& session, BoardPictures& pictures, QWidget* outputControls,
                                     QWidget* parent)
    : QWidget(parent),
      session_(session),
      pictures_(pictures) {
    auto* splitter = new QSplitter(Qt::Horizontal);
    splitter->setObjectName(QStringLiteral("workspaceSplitter"));
    splitter->setChildrenCollapsible(false);
    QWidget* board = buildBoardColumn();
    QWidget* side = buildSideColumn(outputControls);
    splitter->addWidget(board);
    splitter->addWidget(side);
    board->stackUnder(side); // assistants read what is at the bottom first
    splitter->setStretchFactor(0, 1);
    splitter->setSizes({2 * sideColumnWidth, sideColumnWidth});
    controls::column(this)->addWidget(splitter);
}

QWidget* RollWorkspaceView::buildBoardColumn() {
    auto* column = new QWidget;
    QVBoxLayout* layout = controls::column(column);
    layout->setContentsMargins(controls::margin, controls::margin, 0, controls::spacing);
    layout->addWidget(new RollToolBar(session_));
    layout->addWidget(new RollBoardView(session_, pictures_), 1);
    layout->addWidget(new RollHelpLines(session_));
    return column;
}

ArtworkList* RollWorkspaceView::buildList() {
    auto* list = new ArtworkList(session_);
    list->setThumbnails([this](const RollArtwork& artwork, int longestSide) {
        const SharedImageMetadata metadata = session_.metadataFor(artwork);
        return metadata ? std::optional(pictures_.turnedPicture(artwork, metadata, longestSide)) : std::nullopt;
    });
    connect(&pictures_, &BoardPictures::pictureReady, list, &ArtworkList::thumbnailsChanged);
    return list;
}

QWidget* RollWorkspaceView::buildSideColumn(QWidget* outputControls) {
    auto* content = new QWidget;
    QVBoxLayout* layout = controls::column(content);
    layout->setContentsMargins(0, controls::margin, controls::margin, controls::margin);
    layout->setSpacing(controls::margin);
    layout->addWidget(new RollSummaryView(session_));
    layout->addWidget(new ArtworkInspector(session_));
    layout->addWidget(buildList());
    layout->addWidget(outputControls);
    layout->addStretch();
    QScrollArea* scrolling = controls::scrolling(content);
    scrolling->setObjectName(QStringLiteral("sideColumn"));
    content->setMinimumWidth(sideColumnWidth - scrolling->verticalScrollBar()->sizeHint().width());
    return scrolling;
}

} // namespace orvex
