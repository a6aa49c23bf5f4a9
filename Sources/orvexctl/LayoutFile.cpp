#include "LayoutFile.h"

#include "CommandFiles.h"
#include "Json/JsonReader.h"
#include "Json/JsonWriter.h"

namespace orvex {

namespace {

constexpr qint64 largestLayoutBytes = 1 << 26; // a hundred thousand artworks

} // namespace

LayoutFile LayoutFile::read(const QString& path) {
    return parse(readInput(path, largestLayoutBytes));
}

LayoutFile LayoutFile::parse(const QByteArray& json) {
    const auto reader = platform::JsonReader::parse(json);
    if (!reader.contains("layout")) {
        return {.layout = RollLayout::fromJson(reader), .workspace = std::nullopt};
    }
    const RollWorkspaceFile workspace = RollWorkspaceFile::fromJson(reader);
    workspace.validate();
    return {.layout = workspace.layout, .workspace = workspace};
}

QByteArray LayoutFile::encoded() const {
    if (!workspace) {
        return platform::writeJson(layout.toJson(), platform::JsonForm::pretty);
    }
    RollWorkspaceFile changed = *workspace;
    changed.layout = layout;
    return changed.encode();
}

QList<QUrl> LayoutFile::sources() const {
    QList<QUrl> sources;
    for (const RollArtwork& item : layout.items) {
        sources.append(item.sourceURL);
    }
    return sources;
}

} // namespace orvex
