#include "ProtectedPaths.h"

#include "Files/Paths.h"
#include "QueueFileName.h"

#include <QStringList>

namespace orvex {

namespace {

QStringList filesOfQueue(const QString& preferences, const QString& queue) {
    if (!isSafeInFileName(queue)) {
        return {};
    }
    return {QStringLiteral("/etc/cups/ppd/") + queue + QStringLiteral(".ppd"),
            preferences + QStringLiteral("com.apple.print.custompresets.forprinter.") + queue +
                QStringLiteral(".plist")};
}

} // namespace

QList<QUrl> protectedPaths(const QString& home, const QString& selectedPrinterName) {
    const QString preferences = home + QStringLiteral("/Library/Preferences/");
    const QStringList common{
        QStringLiteral("/Library/Printers/Canon/GARO/Frameworks/CNWP940M.cip"),
        home + QStringLiteral("/.cups/lpoptions"),
        preferences + QStringLiteral("com.apple.print.custompresets.plist"),
        preferences + QStringLiteral("com.apple.print.custompapers.plist"),
        preferences + QStringLiteral("jp.co.canon.ij.lfp.printer.garo.cups.pde.imagePROGRAFPDE2.plist"),
    };
    QList<QUrl> urls;
    for (const QString& path : common + filesOfQueue(preferences, selectedPrinterName)) {
        urls.append(QUrl::fromLocalFile(platform::standardizedPath(path)));
    }
    return urls;
}

} // namespace orvex
