#pragma once

#include "Controls/SymbolNote.h"
#include "OrvexModel.h"
#include "Shell/PrinterRow.h"

#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>
#include <QWidget>

namespace orvex {

/// The local queues, and what is known of the selected one. Main thread.
class PrinterSidebar : public QWidget {
    Q_OBJECT

public:
    /// In device-independent pixels.
    static constexpr int columnWidth = 230;

    explicit PrinterSidebar(OrvexModel& session, QWidget* parent = nullptr);

    /// Shows the session as it is.
    void syncFromSession();

private:
    void build();
    [[nodiscard]] QWidget* content();
    [[nodiscard]] QLayout* headingRow();
    [[nodiscard]] QWidget* footer();
    void connectSignals();
    void syncRows();
    void syncTabOrder();
    void syncReadiness();
    [[nodiscard]] PrinterRow* takeRow(QList<PrinterRow*>& from, const PrinterSnapshot& printer);
    void connectRow(PrinterRow* row);
    void step(PrinterRow* from, int rows);

    OrvexModel& session_;
    QPushButton* refresh_;
    QLabel* reading_;
    QLabel* refreshError_;
    QLabel* noPrinters_;
    QVBoxLayout* rowsLayout_ = nullptr;
    QList<PrinterRow*> rows_;
    QWidget* notReady_ = nullptr;
    SymbolNote* reason_ = nullptr;
    QPushButton* monitor_;
};

} // namespace orvex
