#include "ArtworkTexts.h"

#include "Json/JsonWriter.h"
#include "Layout/NumberText.h"
#include "OrvexLanguage.h"
#include "Output/ImageMetadata.h"
#include "SizeTexts.h"

namespace orvex {

QString ArtworkTexts::pixelSize(const RollArtwork& artwork) {
    return spt("%1 × %2 像素", "%1 × %2 pixels")
        .arg(QString::number(artwork.pixelWidth), QString::number(artwork.pixelHeight));
}

QString ArtworkTexts::printSize(const RollArtwork& artwork) {
    return spt("%1 × %2 英寸", "%1 × %2 in")
        .arg(artworkSizeText(artwork.widthInches), artworkSizeText(artwork.heightInches()));
}

QString ArtworkTexts::originalReference(const RollArtwork& artwork) {
    return spt("原图参考尺寸：%1 × %2 英寸", "Original reference: %1 × %2 in")
        .arg(artworkSizeText(artwork.originalWidthInches), artworkSizeText(artwork.originalHeightInches));
}

QString ArtworkTexts::sizeSource(const QMap<QString, QString>& descriptions, const QUuid& id) {
    const auto found = descriptions.constFind(platform::uuidText(id));
    if (found == descriptions.cend()) {
        return spt("使用文件中记录的参考尺寸", "Uses the reference size recorded in the file");
    }
    return ImageMetadata::localizedPhysicalSizeSource(*found);
}

QString ArtworkTexts::borderFrame(const RollArtwork& artwork) {
    const Rect frame = artwork.trimRectInches();
    return spt("白边外框：%1 × %2 英寸", "Border frame: %1 × %2 in")
        .arg(artworkSizeText(frame.width), artworkSizeText(frame.height));
}

QString ArtworkTexts::resolutionAndRotation(const RollArtwork& artwork) {
    constexpr qint64 degreesPerQuarterTurn = 90;
    return spt("有效分辨率：%1 ppi\n旋转：%2°", "Effective resolution: %1 ppi\nRotation: %2°")
        .arg(formatNumber(artwork.effectivePixelsPerInch(), 3),
             QString::number(artwork.rotationQuarterTurns * degreesPerQuarterTurn));
}

QString ArtworkTexts::rowName(const RollArtwork& artwork) {
    return spt("%1，%2", "%1, %2").arg(artwork.title, printSize(artwork));
}

QString ArtworkTexts::removalName(const RollArtwork& artwork) {
    return spt("移除并自动补位：%1", "Remove and repack: %1").arg(artwork.title);
}

QStringList ArtworkTexts::loadWarnings(const QList<RollArtwork>& artworks, const QHash<QUuid, QString>& warnings) {
    QStringList texts;
    for (const RollArtwork& artwork : artworks) {
        const auto found = warnings.constFind(artwork.id);
        if (found != warnings.cend()) {
            texts.append(*found);
        }
    }
    return texts;
}

} // namespace orvex
