// The report to be sent to whoever helps, and the journal of physical prints.

#include "DiagnosticText.h"
#include "FileGuard.h"
#include "Files/FileReplacer.h"
#include "Files/Paths.h"
#include "OrvexLanguage.h"
#include "OrvexModel.h"

namespace orvex {

QString OrvexModel::diagnosticText() const {
    return orvex::diagnosticText(*this, services_.now());
}

void OrvexModel::exportDiagnostics() {
    const auto file =
        services_.saveFile({.proposedName = QStringLiteral("orvex-diagnostics.txt"), .kind = FileKind::plainText});
    if (!file) {
        return;
    }
    const auto save = [&] {
        refuseOverwritingSources(*file, rollLayout());
        refuseOverwritingOwnData(*file);
        platform::FileReplacer::replace(platform::localPath(*file), diagnosticText().toUtf8());
    };
    if (const auto failure = failureMessageOf(save)) {
        errorMessage.set(failure);
        return;
    }
    message.set(spt("诊断信息已保存，其中包含设备 URI 和路径，分享前请先检查。",
                    "Diagnostics were saved. They contain device URIs and paths; review before sharing."));
}

void OrvexModel::setObservationForm(const ObservationForm& form) {
    observationForm.set(form);
}

void OrvexModel::recordObservation() {
    if (!journalStore) {
        errorMessage.set(spt("实物观察记录不可用，现有记录未被覆盖。",
                             "Observation storage is unavailable. Existing records were not overwritten."));
        return;
    }
    const auto preset = selectedPreset();
    const PresetForm& choices = presetForm();
    // What stands for nothing is data, not a label: it is Chinese in every language.
    PrintObservation observation{.id = QUuid::createUuid(),
                                 .createdAt = services_.now(),
                                 .sequenceNumber = observationForm().observationSequence,
                                 .result = observationForm().observationResult,
                                 .note = observationForm().observationNote,
                                 .artwork = image() ? image()->url.fileName() : QStringLiteral("未指定作品"),
                                 .media = choices.mediaName,
                                 .preset = preset ? preset->name : QStringLiteral("自定义"),
                                 .colorMode = label(choices.colorWorkflow.mode)};
    if (choices.iccAsset) {
        observation.iccSHA256 = choices.iccAsset->sha256;
    }
    QList<PrintObservation> recorded;
    if (const auto failure = failureMessageOf([&] { recorded = journalStore->append(observation); })) {
        errorMessage.set(failure);
        return;
    }
    observations.set(recorded);
    ObservationForm next = observationForm();
    ++next.observationSequence;
    observationForm.set(next); // the result and the note stay, so that a series is quickly typed
    message.set(spt("已记录实物观察。本地排队或空闲状态不代表打印成功。",
                    "The physical observation was recorded. Local queuing or an idle status does not count as a "
                    "successful print."));
}

} // namespace orvex
