#include "WindowState.h"

#include "Files/FileReplacer.h"
#include "Files/Paths.h"
#include "Files/RandomAccessFile.h"
#include "Json/JsonWriter.h"
#include "Stores/StoreFiles.h"

namespace orvex {

namespace {

constexpr qint64 largestBytes = 1 << 20; // a real one has a few hundred

QByteArray bytes(const platform::JsonReader& reader) {
    return QByteArray::fromBase64(reader.text().toLatin1());
}

QString text(const QByteArray& bytes) {
    return QString::fromLatin1(bytes.toBase64());
}

} // namespace

QUrl WindowState::url(const QUrl& folder) {
    return QUrl::fromLocalFile(StoreFiles::path(folder, QStringLiteral("window-state.json")));
}

std::optional<WindowState> WindowState::load(const QUrl& from) {
    const auto content = platform::readFileIfThere(platform::localPath(from), largestBytes);
    return content ? std::optional(fromJson(platform::JsonReader::parse(*content))) : std::nullopt;
}

void WindowState::save(const QUrl& to) const {
    platform::FileReplacer::replace(platform::localPath(to),
                                    platform::writeJson(toJson(), platform::JsonForm::prettyEscapedSlashes));
}

WindowState WindowState::fromJson(const platform::JsonReader& reader) {
    WindowState state{.geometry = bytes(reader.at("geometry")), .splitters = {}, .folder = reader.at("folder").text()};
    for (const auto& [name, value] : reader.at("splitters").members()) {
        state.splitters.insert(name, bytes(value));
    }
    return state;
}

QJsonObject WindowState::toJson() const {
    QJsonObject places;
    for (auto each = splitters.constBegin(); each != splitters.constEnd(); ++each) {
        places.insert(each.key(), text(each.value()));
    }
    return {{QStringLiteral("geometry"), text(geometry)},
            {QStringLiteral("splitters"), places},
            {QStringLiteral("folder"), folder}};
}

} // namespace orvex
