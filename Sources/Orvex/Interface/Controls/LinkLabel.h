#pragma once

#include <QLabel>

namespace orvex {

/// A link to a page on the web, which opens in the user's browser: by a click, and by Return or Space while it has the
/// keyboard. Main thread.
class LinkLabel : public QLabel {
    Q_OBJECT

public:
    LinkLabel(const QString& text, const QString& address);

    /// Opens the page.
    void open() const;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    const QString address_;
};

} // namespace orvex
