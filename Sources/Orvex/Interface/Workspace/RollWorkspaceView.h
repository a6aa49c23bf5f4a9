#pragma once

#include "Board/BoardPictures.h"
#include "OrvexModel.h"

#include <QWidget>

namespace orvex {

class ArtworkList;

/// The first tab: the board with its tools, and the column of everything that is known and set of the roll. It holds no
/// state; its parts follow the session by themselves. Main thread.
class RollWorkspaceView : public QWidget {
    Q_OBJECT

public:
    /// `pictures` must outlive the view; `outputControls` stands at the end of the column, and belongs to it then.
    RollWorkspaceView(OrvexModel& session, BoardPictures& pictures, QWidget* outputControls, QWidget* parent = nullptr);

private:
    [[nodiscard]] QWidget* buildBoardColumn();
    [[nodiscard]] QWidget* buildSideColumn(QWidget* outputControls);
    [[nodiscard]] ArtworkList* buildList();

    OrvexModel& session_;
    BoardPictures& pictures_;
};

} // namespace orvex
