#pragma once

#include "SessionServices.h"

namespace orvex {

/// A desktop without a user: every dialog is cancelled, nothing is opened or printed.
class NoDesktop : public SessionServices {
public:
    [[nodiscard]] QList<QUrl> openFiles(const OpenFilesRequest&) override { return {}; }

    [[nodiscard]] std::optional<QUrl> saveFile(const SaveFileRequest&) override { return std::nullopt; }

    void revealFile(const QUrl&) override {}

    [[nodiscard]] QCoro::Task<std::optional<QString>> openApplication(const QUrl&) override { co_return std::nullopt; }

    void raiseWindow() override {}

    void commitEditing() override {}

    [[nodiscard]] std::unique_ptr<NativePrintOperation> prepareNativePrint(const NativePrintRequest&) override {
        return nullptr; // nothing here asks for a print
    }
};

} // namespace orvex
