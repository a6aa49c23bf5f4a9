#include "CanvasPreference.h"

#include "Files/FileReplacer.h"
#include "Files/FileSystemError.h"
#include "Files/Paths.h"
#include "Files/RandomAccessFile.h"
#include "Json/JsonWriter.h"
#include "Stores/StoreFiles.h"

#include <cerrno>

namespace orvex {

namespace {

constexpr qint64 largestBytes = 1 << 16; // a real one has about a hundred

} // namespace

QUrl CanvasPreference::url(const QUrl& folder) {
    return QUrl::fromLocalFile(StoreFiles::path(folder, QStringLiteral("canvas-default.json")));
}

std::optional<CanvasPreference> CanvasPreference::load(const QUrl& from) {
    const auto content = platform::readFileIfThere(platform::localPath(from), largestBytes);
    return content ? std::optional(fromJson(platform::JsonReader::parse(*content))) : std::nullopt;
}

void CanvasPreference::save(const QUrl& to) const {
    const QString path = platform::localPath(to);
    const QByteArray json = platform::writeJson(toJson(), platform::JsonForm::compactEscapedSlashes);
    if (json.size() > largestBytes) {
        throw platform::FileSystemError(EFBIG, path); // it could not be read again
    }
    platform::FileReplacer::replace(path, json);
}

CanvasPreference CanvasPreference::fromJson(const platform::JsonReader& reader) {
    return {.printerName = reader.at("printerName").text(), .presetID = reader.at("presetID").uuid()};
}

QJsonObject CanvasPreference::toJson() const {
    return {{QStringLiteral("printerName"), printerName}, {QStringLiteral("presetID"), platform::uuidText(presetID)}};
}

} // namespace orvex
