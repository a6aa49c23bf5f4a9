#include "ProtectedPaths.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace orvex {

namespace {

QStringList pathsOf(const QString& home, const QString& queue) {
    QStringList paths;
    for (const QUrl& url : protectedPaths(home, queue)) {
        EXPECT_TRUE(url.isLocalFile());
        paths.append(url.path(QUrl::FullyDecoded));
    }
    return paths;
}

const QStringList common{
    QStringLiteral("/Library/Printers/Canon/GARO/Frameworks/CNWP940M.cip"),
    QStringLiteral("/home/a/.cups/lpoptions"),
    QStringLiteral("/home/a/Library/Preferences/com.apple.print.custompresets.plist"),
    QStringLiteral("/home/a/Library/Preferences/com.apple.print.custompapers.plist"),
    QStringLiteral("/home/a/Library/Preferences/jp.co.canon.ij.lfp.printer.garo.cups.pde.imagePROGRAFPDE2.plist"),
};

} // namespace

TEST(ProtectedPaths, AreThoseOfTheSystemTheUserAndTheQueue) {
    EXPECT_EQ(pathsOf(QStringLiteral("/home/a"), QStringLiteral("Canon_iPF-9400.1")),
              common + QStringList({
                           QStringLiteral("/etc/cups/ppd/Canon_iPF-9400.1.ppd"),
                           QStringLiteral("/home/a/Library/Preferences/"
                                          "com.apple.print.custompresets.forprinter.Canon_iPF-9400.1.plist"),
                       }));
}

TEST(ProtectedPaths, HaveNoneOfAQueueWithoutASafeName) {
    for (const char* queue : {"", "a b", "a/b", "../a", "画", "W9400\n", "\nW9400", "a\u0661", "a:b", "a\\b"}) {
        EXPECT_EQ(pathsOf(QStringLiteral("/home/a"), QString::fromUtf8(queue)), common) << queue;
    }
    EXPECT_EQ(pathsOf(QStringLiteral("/home/a"), QString(QChar(u'\0'))), common);
}

TEST(ProtectedPaths, StayInTheirFoldersWithDotsForAName) {
    EXPECT_EQ(pathsOf(QStringLiteral("/home/a"), QStringLiteral("..")).value(5),
              QStringLiteral("/etc/cups/ppd/...ppd"));
}

TEST(ProtectedPaths, AreStandardised) {
    EXPECT_EQ(pathsOf(QStringLiteral("/home/b/..//a/./"), {}), common);
    EXPECT_EQ(pathsOf(QStringLiteral("/home/50% a#"), {}).value(1), QStringLiteral("/home/50% a#/.cups/lpoptions"));
    EXPECT_EQ(pathsOf(QStringLiteral("/"), {}).value(1), QStringLiteral("/.cups/lpoptions"));
}

} // namespace orvex
