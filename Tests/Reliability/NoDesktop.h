#pragma once

#include "OrvexModel.h"

namespace orvex::test {

/// A desktop that nobody sits at.
class NoDesktop : public SessionServices {
public:
    [[nodiscard]] QList<QUrl> openFiles(const OpenFilesRequest&) override { return {}; }

    [[nodiscard]] std::optional<QUrl> saveFile(const SaveFileRequest&) override { return std::nullopt; }

    void revealFile(const QUrl&) override {}

    [[nodiscard]] QCoro::Task<std::optional<QString>> openApplication(const QUrl&) override { co_return std::nullopt; }

    void commitEditing() override {}

    [[nodiscard]] std::unique_ptr<NativePrintOperation> prepareNativePrint(const NativePrintRequest&) override {
        return nullptr;
    }
};

} // namespace orvex::test
