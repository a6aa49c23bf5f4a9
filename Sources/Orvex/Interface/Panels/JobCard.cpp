#include "JobCard.h"

#include "JobTexts.h"
#include "OrvexLanguage.h"
#include "PanelTexts.h"

#include <QHBoxLayout>

namespace orvex {

JobCard::JobCard(OrvexModel& session, const StagedJob& job, QWidget* parent)
    : Card(parent),
      session_(session),
      job_(job),
      print_(controls::button(QStringLiteral("printJobButton"), spt("打印此 PDF…", "Print this PDF…"),
                              OrvexIcons::Symbol::print)),
      export_(controls::button(QStringLiteral("exportJobButton"), spt("导出此 PDF…", "Export this PDF…"),
                               OrvexIcons::Symbol::exportFile)),
      reveal_(controls::button(QStringLiteral("revealJobButton"), spt("在访达中显示", "Show in Finder"))),
      remove_(controls::button(QStringLiteral("removeJobButton"), spt("移除本地作业", "Remove local job"),
                               OrvexIcons::Symbol::remove)) {
    build();
    connectSignals();
    syncFromSession();
}

void JobCard::build() {
    setObjectName(QStringLiteral("jobCard"));
    // The same roll may be staged more than once.
    const QString which = spt("%1，%2", "%1, %2").arg(job_.title, orvexDateTime(job_.createdAt));
    setAccessibleName(which);
    content().setSpacing(2);
    QLabel* title = controls::heading(job_.title);
    title->setObjectName(QStringLiteral("jobTitle"));
    content().addWidget(title);
    for (const QString& line : JobTexts::lines(job_)) {
        content().addWidget(controls::note(line));
    }
    content().addSpacing(controls::spacing);
    auto* buttons = controls::row();
    for (QPushButton* button : {print_, export_, reveal_}) {
        buttons->addWidget(button);
    }
    buttons->addStretch(1);
    buttons->addWidget(remove_);
    content().addLayout(buttons);
    controls::makeDestructive(*remove_);
    for (QPushButton* button : {print_, export_, reveal_, remove_}) {
        button->setAccessibleDescription(which); // which of the many buttons of this name it is
    }
}

void JobCard::connectSignals() {
    // Each has a job of its own: the card may be gone before the dialog of a command is closed.
    const auto with = [this](void (OrvexModel::*command)(const StagedJob&)) {
        return [&session = session_, job = job_, command] { (session.*command)(job); };
    };
    connect(print_, &QPushButton::clicked, &session_, with(&OrvexModel::printSavedJob));
    connect(export_, &QPushButton::clicked, &session_, with(&OrvexModel::exportJob));
    connect(reveal_, &QPushButton::clicked, &session_, with(&OrvexModel::revealJob));
    connect(remove_, &QPushButton::clicked, &session_, with(&OrvexModel::removeJob));
}

void JobCard::syncFromSession() {
    for (QPushButton* button : {print_, export_, reveal_, remove_}) {
        button->setEnabled(!session_.busy());
    }
}

} // namespace orvex
