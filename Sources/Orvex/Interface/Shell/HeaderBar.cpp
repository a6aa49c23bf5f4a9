#include "HeaderBar.h"

#include "Controls/Controls.h"
#include "OrvexLanguage.h"
#include "PanelTexts.h"

#include <QHBoxLayout>

namespace orvex {

namespace {

constexpr int pictureSide = 40;

QString versionText(const OrvexModel& session) {
    return spt("佳能 iPF9400 · ORVEX 18K · %1 · %2 英寸画布", "Canon iPF9400 · ORVEX 18K · %1 · %2-inch canvas")
        .arg(appVersion(), session.rollWidthLabel());
}

} // namespace

HeaderBar::HeaderBar(OrvexModel& session, QWidget* parent)
    : QWidget(parent),
      session_(session),
      version_(controls::note()),
      addArtworks_(controls::button(QStringLiteral("addArtworksButton"), spt("添加作品", "Add artworks"),
                                    OrvexIcons::Symbol::addArtwork)),
      exportPDF_(controls::button(QStringLiteral("exportPdfButton"), spt("导出 PDF", "Export PDF"),
                                  OrvexIcons::Symbol::exportFile)),
      print_(controls::button(QStringLiteral("printRollButton"), spt("打印卷布", "Print roll"),
                              OrvexIcons::Symbol::print)) {
    build();
    connectSignals();
    syncFromSession();
}

void HeaderBar::build() {
    setObjectName(QStringLiteral("headerBar"));
    version_->setObjectName(QStringLiteral("versionLabel"));
    print_->setToolTip(spt("打开系统打印窗口，按实际尺寸打印卷布。",
                           "Open the system print window to print the roll at actual size."));
    print_->setAccessibleDescription(print_->toolTip());
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(controls::margin, controls::spacing, controls::margin, controls::spacing);
    layout->setSpacing(controls::margin);
    layout->addWidget(controls::picture(OrvexIcons::application(), pictureSide));
    auto* texts = new QVBoxLayout;
    texts->setSpacing(0);
    texts->addWidget(controls::heading(QStringLiteral("orvex")));
    texts->addWidget(version_);
    layout->addLayout(texts, 1);
    for (QPushButton* button : {addArtworks_, exportPDF_, print_}) {
        layout->addWidget(button);
    }
    controls::makePrimary(*print_, OrvexIcons::Symbol::print);
}

void HeaderBar::connectSignals() {
    connect(&session_, &OrvexModel::changed, this, &HeaderBar::syncFromSession);
    connect(addArtworks_, &QPushButton::clicked, &session_, &OrvexModel::importRollArtworks);
    connect(exportPDF_, &QPushButton::clicked, &session_, &OrvexModel::exportRollPDF);
    connect(print_, &QPushButton::clicked, &session_, &OrvexModel::printCurrentRoll);
}

void HeaderBar::syncFromSession() {
    version_->setText(versionText(session_));
    addArtworks_->setEnabled(!session_.busy());
    exportPDF_->setEnabled(session_.canExportRoll());
    print_->setEnabled(session_.canPrintCurrent());
}

} // namespace orvex
