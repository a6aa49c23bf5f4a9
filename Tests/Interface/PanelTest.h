#pragma once

#include "InChinese.h"
#include "RefreshTest.h"

#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTest>

#include <gmock/gmock.h>

namespace orvex::test {

/// A panel over a session on a machine with two queues. No pass has run yet.
template <typename Panel>
class PanelTest : public RefreshTest {
protected:
    std::unique_ptr<Panel> panel;

    /// Shows the panel, over a session that is started unless it runs.
    void open() {
        if (!model) {
            start();
        }
        panel = std::make_unique<Panel>(*model);
        panel->resize(900, 600);
        panel->show();
        turn();
    }

    /// The same in Chinese.
    void openInChinese() {
        chinese_.emplace();
        open();
    }

    /// Lets the session announce what has changed.
    static void turn() {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    /// Puts the session into a state, and shows it.
    template <typename Value>
    void have(Observed<Value>& field, Value value) {
        SessionBackdoor::set(field, std::move(value));
        turn();
    }

    void haveReadings(const std::function<void(PrinterReadings&)>& change) {
        PrinterReadings changed = model->printerReadings();
        change(changed);
        have(model->printerReadings, changed);
    }

    template <typename Widget = QWidget>
    [[nodiscard]] Widget* find(const char* name) const {
        auto* found = panel->template findChild<Widget*>(QLatin1String(name));
        return found ? found : throw std::runtime_error(std::string("there is no ") + name);
    }

    [[nodiscard]] bool isShown(const char* name) const { return find(name)->isVisible(); }

    [[nodiscard]] bool isEnabled(const char* name) const { return find(name)->isEnabled(); }

    [[nodiscard]] std::string labelText(const char* name) const { return find<QLabel>(name)->text().toStdString(); }

    void click(const char* name) { clickOn(*find(name)); }

    static void clickOn(QWidget& widget) {
        QTest::mouseClick(&widget, Qt::LeftButton);
        turn();
    }

    /// The texts of buttons, each ampersand as it is seen.
    [[nodiscard]] std::string buttonText(const char* name) const {
        return find<QPushButton>(name)->text().replace(QStringLiteral("&&"), QStringLiteral("&")).toStdString();
    }

    /// A link to a page, whose click opens the user's browser.
    void expectLink(const char* name, const QString& text, const QString& address) const {
        const auto* link = find<QLabel>(name);
        EXPECT_EQ(link->text(), QStringLiteral("<a href=\"%1\">%2</a>").arg(address, text));
        EXPECT_EQ(link->accessibleName(), text);
        EXPECT_TRUE(link->openExternalLinks());
        EXPECT_TRUE(address.startsWith(QStringLiteral("https://")));
    }

    /// All texts that can be seen, in the order of reading.
    [[nodiscard]] std::vector<std::string> shownTexts() const {
        std::vector<std::string> texts;
        for (const QLabel* label : panel->template findChildren<QLabel*>()) {
            if (label->isVisible() && !label->text().isEmpty()) {
                texts.push_back(label->text().toStdString());
            }
        }
        return texts;
    }

    void TearDown() override {
        panel.reset();
        if (model) {
            SessionBackdoor::set(model->busy, false);
            SessionBackdoor::set(model->refreshing, false);
        }
        chinese_.reset();
    }

private:
    std::optional<InChinese> chinese_;
};

} // namespace orvex::test
