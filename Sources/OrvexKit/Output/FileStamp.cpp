#include "Output/FileStamp.h"

#include "Files/FileFacts.h"
#include "Files/Paths.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"

namespace orvex {

FileStamp FileStamp::read(const QUrl& url) {
    const platform::FileFacts facts = platform::FileFacts::read(platform::localPath(url));
    if (!facts.isRegularFile) {
        throw OrvexError::invalid(spt("原图无法读取，或尚未下载到本机：%1。",
                                      "The source artwork is unreadable or has not been downloaded locally: %1")
                                      .arg(url.fileName()));
    }
    return {.size = facts.sizeBytes, .modified = facts.modifiedNanoseconds};
}

} // namespace orvex
