#include "Stores/StoreFiles.h"

#include "Files/DescriptorIO.h"
#include "Files/FileSystemError.h"
#include "Files/LinkFreeView.h"
#include "Files/Paths.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "Text.h"

#include <QFileInfo>

#include <cerrno>

namespace orvex::StoreFiles {

namespace {

void requireRegularFile(const platform::LinkFreeView& view, const QByteArray& native, const QString& path) {
    if (view.facts(native).kind != platform::ItemKind::regularFile) {
        throw OrvexError::invalid(spt("文件不存在、不是普通文件，或是链接：%1。",
                                      "The file is missing, is not a regular file, or is a link: %1.")
                                      .arg(QFileInfo(path).fileName()));
    }
}

} // namespace

QString path(const QUrl& directory, const QString& name) {
    const QString folder = platform::localPath(directory);
    return folder.endsWith(u'/') ? folder + name : folder + u'/' + name;
}

bool isOwnFile(const QUrl& file, const QUrl& directory) {
    const QString place = platform::resolvingSymlinks(platform::localPath(file));
    const QFileInfo info(place);
    const bool isInside = place.startsWith(platform::resolvingSymlinks(platform::localPath(directory)) + u'/');
    return isInside && (info.suffix() == u"json" || info.suffix() == u"icc" || platform::uuid(info.baseName()));
}

void requireReadable(const QByteArrayList& pieces, const QString& path) {
    constexpr qint64 largestPieceBytes = platform::JsonPortions::largestElementBytes / 2; // it is read with others
    qint64 bytes = 0;
    for (const QByteArray& piece : pieces) {
        bytes += piece.size();
        if (piece.size() > largestPieceBytes || bytes > largestListBytes) {
            throw platform::FileSystemError(EFBIG, path);
        }
    }
}

QByteArray readRegularFile(const QString& path, qint64 limitBytes) {
    const QByteArray native = platform::nativePath(path);
    const platform::LinkFreeView view(native);
    requireRegularFile(view, native, path);
    const platform::FileDescriptor file = view.openFile(native);
    const qint64 size = platform::sizeBytes(file, path);
    if (size > limitBytes) {
        throw platform::FileSystemError(EFBIG, path);
    }
    return platform::bytesAt(file, size, 0, size, path);
}

} // namespace orvex::StoreFiles
