#include "Stores/StoreFiles.h"

#include "Files/DescriptorIO.h"
#include "Files/LinkFreeView.h"
#include "Files/Paths.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"

#include <QFileInfo>

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
    return platform::standardizedPath(platform::localPath(directory) + u'/' + name);
}

QByteArray readRegularFile(const QString& path, qint64 limitBytes) {
    const QByteArray native = platform::nativePath(path);
    const platform::LinkFreeView view(native);
    requireRegularFile(view, native, path);
    const platform::FileDescriptor file = view.openFile(native);
    return platform::bytesAt(file, platform::sizeBytes(file, path), 0, limitBytes, path);
}

} // namespace orvex::StoreFiles
