#include "FileKinds.h"

#include "OrvexLanguage.h"

namespace orvex {

namespace {

QString named(const QString& name, const QString& patterns) {
    return name + QStringLiteral(" (") + patterns + u')';
}

QString ownFilter(FileKind kind) {
    switch (kind) {
    case FileKind::image:
        return named(spt("图像", "Images"),
                     QStringLiteral("*.jpg *.jpeg *.png *.tif *.tiff *.heic *.heif *.JPG *.JPEG *.PNG *.TIF *.TIFF "
                                    "*.HEIC *.HEIF"));
    case FileKind::layout:
        return named(spt("卷布排版", "Roll layouts"), QStringLiteral("*.json *.JSON"));
    case FileKind::outputProfile:
        return named(spt("ICC 配置文件", "ICC profiles"), QStringLiteral("*.icc *.icm *.ICC *.ICM"));
    case FileKind::pdf:
        return named(spt("PDF 文件", "PDF files"), QStringLiteral("*.pdf *.PDF"));
    case FileKind::plainText:
        return named(spt("文本文件", "Text files"), QStringLiteral("*.txt *.TXT"));
    }
    return {};
}

} // namespace

/// Files of any name, too: what a file is, its content decides.
QStringList FileKinds::filters(FileKind kind) {
    return {ownFilter(kind), named(spt("所有文件", "All files"), QStringLiteral("*"))};
}

QString FileKinds::suffix(FileKind kind) {
    switch (kind) {
    case FileKind::layout:
        return QStringLiteral("json");
    case FileKind::pdf:
        return QStringLiteral("pdf");
    case FileKind::plainText:
        return QStringLiteral("txt");
    case FileKind::image:
    case FileKind::outputProfile:
        break;
    }
    return {};
}

} // namespace orvex
