// The check that nobody has changed the printer's local settings.

#include "Interrupted.h"
#include "OrvexLanguage.h"
#include "OrvexModel.h"
#include "ProtectedPaths.h"
#include "SettingsPreservationService.h"

#include <QDir>

namespace orvex {

/// Raises Interrupted.
QCoro::Task<> OrvexModel::checkProtectedSettings() {
    const QFuture<ProtectedSettingsSnapshot> capturing =
        readings_.captureSettings(pathsToCapture(), closing_.get_token());
    try {
        const ProtectedSettingsSnapshot current = co_await capturing;
        if (protectedBaseline) {
            compareProtectedSettings(current);
        } else {
            recordBaseline(current);
        }
    } catch (const platform::Interrupted&) {
        throw;
    } catch (const std::exception&) {
        // nothing is known that was not known before, and no alert comes from here
    }
}

/// A baseline fixes what is watched; a later change of printer adds nothing.
QList<QUrl> OrvexModel::pathsToCapture() const {
    if (!protectedBaseline) {
        return protectedPaths(QDir::homePath(), printerReadings().selectedPrinterName);
    }
    QList<QUrl> paths;
    for (const QString& path : protectedBaseline->rootPaths) {
        paths.append(QUrl::fromLocalFile(path));
    }
    return paths;
}

void OrvexModel::compareProtectedSettings(const ProtectedSettingsSnapshot& current) {
    const auto comparison = SettingsPreservationService::compare(*protectedBaseline, current);
    QStringList changes;
    for (const ProtectedSettingsChange& change : comparison.changes) {
        changes.append(change.path);
    }
    protectionChanges.set(changes);
    if (!changes.isEmpty()) {
        protectionMessage.set(spt("本地设置文件已发生变化。请核对佳能设置；应用不会自动恢复或覆盖这些文件。",
                                  "Local settings files have changed. Review the Canon settings; the app will not "
                                  "restore or overwrite them automatically."));
    } else if (!comparison.unverifiablePaths.isEmpty()) {
        protectionMessage.set(spt("可读取的本地设置未变化，部分文件无法核实。请在打印机面板上确认裁切设置。",
                                  "Readable local settings are unchanged; some files could not be verified. Confirm "
                                  "panel cutting on the printer."));
    } else {
        protectionMessage.set(spt("本地设置指纹与设置基线一致。请在打印机面板上确认裁切设置。",
                                  "Local settings fingerprints match the baseline. Confirm panel cutting on the "
                                  "printer."));
    }
}

/// The first capture with a known printer is what later ones are compared with.
void OrvexModel::recordBaseline(const ProtectedSettingsSnapshot& current) {
    if (!protectionStore || printerReadings().selectedPrinterName.isEmpty()) {
        return;
    }
    if (const auto failure = failureMessageOf([&] { protectionStore->save(current); })) {
        protectionMessage.set(spt("无法保存设置基线：%1", "Could not save the baseline: %1").arg(*failure));
        return;
    }
    protectedBaseline = current;
    protectionMessage.set(spt("已记录现有本地设置指纹。不会写入或恢复驱动设置。",
                              "Existing local settings fingerprints were recorded. Driver settings are not written or "
                              "restored."));
}

} // namespace orvex
