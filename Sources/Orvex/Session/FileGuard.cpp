#include "FileGuard.h"

#include "Files/ApplicationFolder.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "OrvexQAWorkspace.h"
#include "Output/SourceGuard.h"
#include "Stores/StoreFiles.h"

namespace orvex {

QUrl storesFolder() {
    return OrvexQAWorkspace::directory().value_or(QUrl::fromLocalFile(platform::applicationFolder()));
}

void refuseOverwritingSources(const QUrl& to, const RollLayout& layout) {
    QList<QUrl> sources;
    for (const RollArtwork& item : layout.items) {
        sources.append(item.sourceURL);
    }
    if (overwritesSource(to, sources)) {
        throw OrvexError::invalid(spt("保存位置不能覆盖作品的原图。请另选一个文件。",
                                      "The chosen location cannot overwrite the original of an artwork. Choose a "
                                      "separate file."));
    }
}

void refuseOverwritingOwnData(const QUrl& to) {
    if (StoreFiles::isOwnFile(to, storesFolder())) {
        throw OrvexError::invalid(spt("保存位置不能覆盖应用自身的数据文件。请另选一个文件。",
                                      "The chosen location cannot overwrite the program's own data. Choose another "
                                      "file."));
    }
}

} // namespace orvex
