#include "BoardAccessibility.h"

#include "Board/RollBoardView.h"
#include "BoardTexts.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QPointer>

#include <algorithm>

namespace orvex::BoardAccessibility {

namespace {

/// One artwork on the board: named by its title, size and place, and selected by its action.
class ArtworkNode : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    ArtworkNode(RollBoardView& board, const QUuid& id) : board_(&board), id_(id) {}

    [[nodiscard]] bool isValid() const override { return item() != nullptr; }

    [[nodiscard]] QObject* object() const override { return nullptr; }

    [[nodiscard]] QWindow* window() const override { return isValid() ? board_->window()->windowHandle() : nullptr; }

    [[nodiscard]] QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(board_);
    }

    [[nodiscard]] QAccessibleInterface* child(int) const override { return nullptr; }

    [[nodiscard]] QAccessibleInterface* childAt(int, int) const override { return nullptr; }

    [[nodiscard]] int childCount() const override { return 0; }

    [[nodiscard]] int indexOfChild(const QAccessibleInterface*) const override { return -1; }

    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::Graphic; }

    [[nodiscard]] QRect rect() const override {
        if (!isValid()) {
            return {};
        }
        const QRect frame = board_->frameOf(id_).toAlignedRect();
        return {board_->viewport()->mapToGlobal(frame.topLeft()), frame.size()};
    }

    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Name && isValid() ? BoardTexts::accessibilityLabel(*item()) : QString();
    }

    void setText(QAccessible::Text, const QString&) override {}

    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state;
        state.invalid = !isValid();
        state.selectable = true;
        state.focusable = true;
        state.selected = isValid() && board_->session().selectedArtworkID() == id_;
        state.focused = state.selected && board_->hasKeyboard();
        state.disabled = isValid() && board_->session().busy();
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
    }

    [[nodiscard]] QStringList actionNames() const override { return {pressAction()}; }

    void doAction(const QString& name) override {
        if (name == pressAction() && isValid()) {
            board_->tap(id_);
        }
    }

    [[nodiscard]] QStringList keyBindingsForAction(const QString&) const override { return {}; }

private:
    [[nodiscard]] const RollArtwork* item() const {
        if (!board_) {
            return nullptr;
        }
        const QList<RollArtwork>& items = board_->session().rollLayout().items;
        const auto found = std::ranges::find(items, id_, &RollArtwork::id);
        return found != items.end() ? &*found : nullptr;
    }

    QPointer<RollBoardView> board_;
    QUuid id_;
};

/// The board: its artworks, and behind them the widgets that it consists of.
class BoardNode : public QAccessibleWidget {
public:
    explicit BoardNode(RollBoardView& board) : QAccessibleWidget(&board, QAccessible::Canvas), board_(board) {}

    ~BoardNode() override {
        for (const QAccessible::Id node : std::as_const(nodes_)) {
            QAccessible::deleteAccessibleInterface(node);
        }
    }

    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Name ? BoardTexts::accessibilityLabel(board_.session().rollLayout())
                                         : QAccessibleWidget::text(kind);
    }

    [[nodiscard]] int childCount() const override { return artworkCount() + QAccessibleWidget::childCount(); }

    [[nodiscard]] QAccessibleInterface* child(int index) const override {
        if (index < 0 || index >= artworkCount()) {
            return QAccessibleWidget::child(index - artworkCount());
        }
        return node(board_.session().rollLayout().items[index].id);
    }

    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override {
        for (int index = 0; index < artworkCount(); ++index) {
            if (this->child(index) == child) {
                return index;
            }
        }
        const int behind = QAccessibleWidget::indexOfChild(child);
        return behind < 0 ? behind : behind + artworkCount();
    }

    [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override {
        const auto hit = board_.hitAt(board_.viewport()->mapFromGlobal(QPoint(x, y)));
        return hit ? node(hit->id) : QAccessibleWidget::childAt(x, y);
    }

private:
    [[nodiscard]] int artworkCount() const { return static_cast<int>(board_.session().rollLayout().items.size()); }

    /// The nodes are made when they are first asked for, and stay the same ones as long as the board is there.
    [[nodiscard]] QAccessibleInterface* node(const QUuid& id) const {
        auto known = nodes_.constFind(id);
        if (known == nodes_.constEnd()) {
            known = nodes_.insert(id, QAccessible::registerAccessibleInterface(new ArtworkNode(board_, id)));
        }
        return QAccessible::accessibleInterface(*known);
    }

    RollBoardView& board_;
    mutable QHash<QUuid, QAccessible::Id> nodes_;
};

QAccessibleInterface* makeNode(const QString&, QObject* object) {
    auto* board = qobject_cast<RollBoardView*>(object);
    return board != nullptr ? new BoardNode(*board) : nullptr;
}

} // namespace

void install() {
    static const bool isInstalled = [] {
        QAccessible::installFactory(makeNode);
        return true;
    }();
    (void)isInstalled;
}

} // namespace orvex::BoardAccessibility
