#pragma once

#include "Board/BoardPictures.h"
#include "OrvexModel.h"

#include <QMap>
#include <QSplitter>
#include <QStackedWidget>
#include <QTabBar>
#include <QWidget>

namespace orvex {

/// All that the main window holds: header, safety banner, the sidebar of printers, the tabs and the status line. Main
/// thread.
class ContentView : public QWidget {
    Q_OBJECT

public:
    /// `pictures` must outlive the view.
    ContentView(OrvexModel& session, BoardPictures& pictures, QWidget* parent = nullptr);

    void syncFromSession();

    /// Where the user put the borders between parts, by their names.
    [[nodiscard]] QMap<QString, QByteArray> splitterStates() const;
    void restoreSplitters(const QMap<QString, QByteArray>& states);

private:
    void build();
    [[nodiscard]] QWidget* buildBody();
    [[nodiscard]] QWidget* buildTabs();

    OrvexModel& session_;
    BoardPictures& pictures_;
    QTabBar* selector_ = nullptr;
    QStackedWidget* pages_ = nullptr;
};

} // namespace orvex
