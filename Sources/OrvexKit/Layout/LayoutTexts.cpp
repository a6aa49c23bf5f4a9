#include "Layout/LayoutTexts.h"

#include "OrvexLanguage.h"

namespace orvex {

namespace LayoutTexts {

QString pixelSizeNotPositive() {
    return spt("作品的像素宽度和高度必须为正数。", "Artwork pixel width and height must be positive.");
}

QString aspectMismatch() {
    return spt("原图的物理尺寸与像素比例不一致。为避免变形，操作已停止。",
               "The original physical dimensions do not match the pixel aspect ratio. The operation was stopped to "
               "avoid distortion.");
}

QString unsupportedVersion() {
    return spt("不支持此卷布排版的版本。", "This roll layout version is unsupported.");
}

QString duplicateIDs() {
    return spt("作品 ID 重复。", "Duplicate artwork IDs.");
}

QString artworkNotFound() {
    return spt("未找到此作品。", "This artwork was not found.");
}

QString positionsNotNumbers() {
    return spt("作品位置必须是有效数字。", "Artwork positions must be valid numbers.");
}

QString titled(const QString& title, const QString& message) {
    return title + u'：' + message;
}

} // namespace LayoutTexts

} // namespace orvex
