#include "ContentView.h"

#include "Controls/Controls.h"
#include "OrvexLanguage.h"
#include "OutputOptions/OutputControls.h"
#include "Panels/DiagnosticsPanel.h"
#include "Panels/MonitorPanel.h"
#include "Panels/QueuePanel.h"
#include "Shell/HeaderBar.h"
#include "Shell/PrinterSidebar.h"
#include "Shell/SafetyBanner.h"
#include "Shell/StatusLine.h"
#include "Workspace/RollWorkspaceView.h"

#include <QSignalBlocker>

namespace orvex {

namespace {

constexpr int queueTab = 1;

QString queueTitle(qsizetype count) {
    return controls::literal(spt("待打印队列 · %1", "Print queue · %1").arg(count));
}

} // namespace

ContentView::ContentView(OrvexModel& session, BoardPictures& pictures, QWidget* parent)
    : QWidget(parent),
      session_(session),
      pictures_(pictures) {
    build();
    connect(selector_, &QTabBar::currentChanged, &session_, &OrvexModel::setTab);
    connect(&session_, &OrvexModel::changed, this, &ContentView::syncFromSession);
    syncFromSession();
}

void ContentView::build() {
    QVBoxLayout* column = controls::column(this);
    column->setSpacing(0);
    column->addWidget(new HeaderBar(session_));
    column->addWidget(new SafetyBanner(session_));
    column->addWidget(buildBody(), 1);
    column->addWidget(new StatusLine(session_));
}

QWidget* ContentView::buildBody() {
    auto* body = new QWidget;
    auto* row = new QHBoxLayout(body);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(new PrinterSidebar(session_));
    row->addWidget(buildTabs(), 1);
    return body;
}

QWidget* ContentView::buildTabs() {
    auto* tabs = new QWidget;
    QVBoxLayout* column = controls::column(tabs);
    column->setSpacing(0);
    selector_ = new QTabBar;
    selector_->setObjectName(QStringLiteral("tabSelector"));
    selector_->setAccessibleName(spt("面板", "Panels"));
    selector_->setExpanding(false);
    selector_->setDrawBase(false);
    selector_->addTab(controls::literal(spt("卷布排版", "Roll layout")));
    selector_->addTab(queueTitle(0));
    selector_->addTab(controls::literal(spt("驱动诊断", "Driver diagnostics")));
    selector_->addTab(controls::literal(spt("设备与颜色记录", "Device & colour log")));
    pages_ = new QStackedWidget;
    pages_->addWidget(new RollWorkspaceView(session_, pictures_, new OutputControls(session_)));
    pages_->addWidget(new QueuePanel(session_));
    pages_->addWidget(new DiagnosticsPanel(session_));
    pages_->addWidget(new MonitorPanel(session_));
    column->addWidget(selector_);
    controls::ignoreWheel(*selector_);
    column->addWidget(pages_, 1);
    return tabs;
}

void ContentView::syncFromSession() {
    const QSignalBlocker blocker(selector_);
    if (const QString title = queueTitle(session_.jobs().size()); selector_->tabText(queueTab) != title) {
        selector_->setTabText(queueTab, title);
    }
    selector_->setCurrentIndex(session_.tab());
    pages_->setCurrentIndex(session_.tab());
}

QMap<QString, QByteArray> ContentView::splitterStates() const {
    QMap<QString, QByteArray> states;
    for (const QSplitter* splitter : findChildren<QSplitter*>()) {
        states.insert(splitter->objectName(), splitter->saveState());
    }
    return states;
}

void ContentView::restoreSplitters(const QMap<QString, QByteArray>& states) {
    for (QSplitter* splitter : findChildren<QSplitter*>()) {
        splitter->restoreState(states.value(splitter->objectName()));
    }
}

} // namespace orvex
