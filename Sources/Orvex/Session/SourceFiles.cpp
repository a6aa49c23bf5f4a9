#include "SourceFiles.h"

#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "Output/SourceGuard.h"

namespace orvex {

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

} // namespace orvex
