#pragma once

#include "BatchSizing/BatchSizingView.h"
#include "BatchSizingModel.h"
#include "LayoutFixtures.h"
#include "SessionFixture.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QTest>

namespace orvex::test {

/// The panel for many sizes, open over artworks of a session. Not of the same name as the session's own artworks:
/// those here have ids that a test can name.
class BatchView : public SessionTest {
protected:
    void open(const QList<RollArtwork>& items) {
        start();
        settle();
        RollLayout layout;
        for (const RollArtwork& item : items) {
            layout.append(item, 0.0);
        }
        SessionBackdoor::set(model->rollLayout, layout);
        view = std::make_unique<BatchSizingView>(*model);
        QObject::connect(view.get(), &QDialog::finished, view.get(), [this] { ++closings; });
        view->open();
        ASSERT_TRUE(QTest::qWaitForWindowActive(view.get()));
        settleView();
    }

    /// Two artworks of 3 : 2, one above the other for want of room.
    void openTwo() { open({test::artwork(30.0, 20.0, 1), test::artwork(30.0, 20.0, 2)}); }

    /// One that has no pair of quarter inches below one that has.
    void openWithBadRow() { open({test::artwork(30.0, 20.0, 1), test::artwork(4.001, 3.0, 2)}); }

    void openMany(unsigned count) {
        QList<RollArtwork> items;
        for (unsigned number = 1; number <= count; ++number) {
            items.append(test::artworkAt(0.0, 10.0 * number, 3.0, 2.0, number));
        }
        start();
        settle();
        SessionBackdoor::set(model->rollLayout, RollLayout(items));
        view = std::make_unique<BatchSizingView>(*model);
        view->open();
        ASSERT_TRUE(QTest::qWaitForWindowActive(view.get()));
        settleView();
    }

    static void settleView() {
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
    }

    /// A part of the panel by its name; null, and a failure, if there is none.
    template <typename Part>
    [[nodiscard]] Part* part(const char* name) const {
        Part* const found = view->findChild<Part*>(QString::fromLatin1(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }

    [[nodiscard]] QWidget* widget(const char* name) const { return part<QWidget>(name); }

    [[nodiscard]] QAbstractButton* button(const char* name) const { return part<QAbstractButton>(name); }

    [[nodiscard]] QLineEdit* field(const char* name) const { return part<QLineEdit>(name); }

    [[nodiscard]] std::string textOf(const char* label) const { return part<QLabel>(label)->text().toStdString(); }

    /// "width text × height text" as the row's fields show them.
    [[nodiscard]] std::string sizeTexts(int row) const {
        const QString number = QString::number(row);
        const auto* width = view->findChild<QLineEdit*>(QStringLiteral("batchWidthField") + number);
        const auto* height = view->findChild<QLineEdit*>(QStringLiteral("batchHeightField") + number);
        return (width->text() + QStringLiteral(" × ") + height->text()).toStdString();
    }

    void click(const char* name) const {
        QTest::mouseClick(button(name), Qt::LeftButton, {}, QPoint(8, button(name)->height() / 2));
        settleView();
    }

    /// Clicks into a field, and types in place of what it holds.
    void type(const char* name, const char* text) const {
        QLineEdit* const typed = field(name);
        QTest::mouseClick(typed, Qt::LeftButton);
        typed->selectAll();
        *text == '\0' ? QTest::keyClick(typed, Qt::Key_Delete) : QTest::keyClicks(typed, QString::fromUtf8(text));
        settleView();
    }

    /// Presses a key where the keyboard is.
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const {
        QWidget* const focused = view->focusWidget();
        QTest::keyClick(focused != nullptr ? focused : view.get(), key, modifiers);
        settleView();
    }

    /// The name of what has the keyboard, or "(none)".
    [[nodiscard]] std::string focusName() const {
        const QWidget* const focused = QApplication::focusWidget();
        return focused == nullptr ? "(none)" : focused->objectName().toStdString();
    }

    void calculate() const {
        click("batchCalculateButton");
        awaitEnd();
    }

    void awaitEnd() const {
        waitFor([this] { return !view->model().calculating(); });
        settleView();
    }

    [[nodiscard]] const char* issueText() const {
        static std::string text;
        const auto* label = part<QLabel>("batchIssueLabel");
        text = label->isVisible() ? label->text().toStdString() : "(none)";
        return text.c_str();
    }

    std::unique_ptr<BatchSizingView> view;
    int closings = 0;
};

} // namespace orvex::test
