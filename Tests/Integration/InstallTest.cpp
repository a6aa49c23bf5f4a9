#include "Command.h"
#include "InstalledTree.h"
#include "Layout/RollWorkspaceFile.h"
#include "LayoutFixtures.h"

#include <QMimeDatabase>

#include <gtest/gtest.h>

namespace orvex {
namespace {

using test::InstalledTree;
using test::q;

/// The value of a key of a desktop entry.
QString entryValue(const QString& entry, const QString& key) {
    for (const QString& line : entry.split(u'\n')) {
        if (line.startsWith(key + u'=')) {
            return line.section(u'=', 1);
        }
    }
    return {};
}

TEST(Install, putsEveryFileInItsPlace) {
    const InstalledTree tree(InstalledTree::Way::staged);
    QStringList expected{q("bin/orvex"),
                         q("bin/orvexctl"),
                         q("share/applications/orvex.desktop"),
                         q("share/bash-completion/completions/orvex"),
                         q("share/bash-completion/completions/orvexctl"),
                         q("share/fish/vendor_completions.d/orvex.fish"),
                         q("share/fish/vendor_completions.d/orvexctl.fish"),
                         q("share/icons/hicolor/scalable/apps/orvex.svg"),
                         q("share/man/man1/orvex.1"),
                         q("share/man/man1/orvexctl.1"),
                         q("share/man/zh_CN/man1/orvex.1"),
                         q("share/man/zh_CN/man1/orvexctl.1"),
                         q("share/metainfo/local.orvex.orvex.metainfo.xml"),
                         q("share/mime/packages/orvex.xml"),
                         q("share/orvex/info.json"),
                         q("share/zsh/site-functions/_orvex"),
                         q("share/zsh/site-functions/_orvexctl")};
    for (const int pixels : {16, 22, 24, 32, 48, 64, 128, 256}) {
        expected.append(q("share/icons/hicolor/%1x%1/apps/orvex.png").arg(pixels));
    }
    expected.sort();
    EXPECT_EQ(tree.files(), expected);
}

TEST(Install, leavesProgramsThatSpeakTheUsersLanguage) {
    const InstalledTree tree;
    const QString program = tree.path("bin/orvexctl");
    // Without share/orvex/info.json beside it the program would speak Chinese to everyone.
    EXPECT_TRUE(tree.run(program, {q("--help")}, "en_US.UTF-8").output.startsWith(q("Prepares large-format artwork")));
    EXPECT_TRUE(tree.run(program, {q("--help")}, "zh_CN.UTF-8").output.startsWith(q("为 60 英寸卷布打印机")));
}

TEST(Install, leavesAWindowProgramThatAnswersWithoutADisplay) {
    const InstalledTree tree;
    const QString program = tree.path("bin/orvex");
    EXPECT_EQ(tree.run(program, {q("--version")}, "en_US.UTF-8").output, q("orvex " ORVEX_VERSION "\n"));
    EXPECT_TRUE(tree.run(program, {q("--help")}, "en_US.UTF-8").output.startsWith(q("Prepares large-format artwork")));
    EXPECT_TRUE(tree.run(program, {q("--help")}, "zh_CN.UTF-8").output.startsWith(q("为 60 英寸卷布打印机")));
}

TEST(Install, drawsTheIconAtEverySize) {
    const InstalledTree tree;
    for (const int pixels : {16, 22, 24, 32, 48, 64, 128, 256}) {
        const QByteArray png =
            test::TemporaryFolder::read(tree.path(q("share/icons/hicolor/%1x%1/apps/orvex.png").arg(pixels)));
        ASSERT_TRUE(png.startsWith("\x89PNG\r\n")) << pixels;
        // Width and height are big endian numbers at the bytes 16 and 20 of a PNG file.
        EXPECT_EQ(png.sliced(16, 8).toHex(), q("%1%1").arg(pixels, 8, 16, QChar(u'0')).toLatin1());
    }
}

TEST(Install, hasADesktopEntryThatTheDesktopTakes) {
    const InstalledTree tree;
    const test::ProgramResult result =
        tree.run(q("desktop-file-validate"), {tree.path("share/applications/orvex.desktop")});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ((result.output + result.errors).toStdString(), "");
}

TEST(Install, hasADesktopEntryOfWhatIsInstalled) {
    const InstalledTree tree;
    const QString entry = tree.text("share/applications/orvex.desktop");
    EXPECT_EQ(entryValue(entry, q("Exec")), q("orvex %F"));
    EXPECT_TRUE(QFile::exists(tree.path("bin/orvex")));
    EXPECT_EQ(entryValue(entry, q("Icon")), q("orvex"));
    EXPECT_EQ(entryValue(entry, q("StartupWMClass")), q("orvex"));
    EXPECT_EQ(entryValue(entry, q("Terminal")), q("false"));
    EXPECT_EQ(entryValue(entry, q("Comment[zh_CN]")), q("为卷布打印机准备大幅面作品"));
    EXPECT_EQ(entryValue(entry, q("MimeType")),
              q("application/x-orvex-layout+json;image/jpeg;image/png;image/tiff;image/heif;image/heic;"));
    EXPECT_TRUE(tree.text("share/metainfo/local.orvex.orvex.metainfo.xml")
                    .contains(q("<launchable type=\"desktop-id\">orvex.desktop</launchable>")));
}

TEST(Install, describesItselfToSoftwareCentres) {
    const InstalledTree tree(InstalledTree::Way::staged);
    const test::ProgramResult result = tree.run(q("appstreamcli"), {q("validate-tree"), q("--no-net"), tree.root()});
    EXPECT_EQ(result.status, 0) << result.output.toStdString();
    EXPECT_TRUE(result.output.contains(q("local.orvex.orvex.metainfo.xml"))) << result.output.toStdString();
}

/// A layout as the program saves it.
QByteArray savedLayout(double gapInches, const QList<RollArtwork>& artworks) {
    RollWorkspaceFile file;
    file.layout = RollLayout(artworks);
    file.gapInches = gapInches;
    if (!artworks.isEmpty()) {
        file.selection = artworks.first().id;
        file.sizingDescriptions.insert(q("A"), q("B"));
    }
    return file.encode();
}

struct NamedContent {
    const char* name;
    QByteArray content;
    const char* type;
};

TEST(Install, tellsSavedLayoutsFromOtherJson) {
    constexpr const char* layoutType = "application/x-orvex-layout+json";
    constexpr const char* jsonType = "application/json";
    const InstalledTree tree;
    qputenv("XDG_DATA_HOME", "/nonexistent");
    qputenv("XDG_DATA_DIRS", tree.path("share").toUtf8() + ":/usr/share");
    const QByteArray empty = savedLayout(0.0, {});
    const QByteArray full = savedLayout(1.0 / 3.0, {test::artwork(2.0, 3.0, 1), test::artwork(2.0, 3.0, 2)});
    const QMimeDatabase types;
    for (const auto& [name, content, type] :
         {NamedContent{"orvex-roll-layout.json", empty, layoutType},
          NamedContent{"orvex-卷布排版.json", full, layoutType},
          NamedContent{"orvex-roll-layout (2).json", full, layoutType}, NamedContent{"wedding", empty, layoutType},
          NamedContent{"wedding", full, layoutType}, NamedContent{"wedding.json", full, jsonType},
          NamedContent{"package.json", "{\n    \"name\": 1\n}\n", jsonType},
          NamedContent{"roll-layout.json", "{}", jsonType}, NamedContent{"orvex-settings.json", "{}", jsonType},
          NamedContent{"gap", "{\n    \"gapInches\": 1\n}\n", "text/plain"}}) {
        EXPECT_EQ(types.mimeTypeForFileNameAndData(q(name), content).name().toStdString(), type) << name;
    }
    EXPECT_TRUE(types.mimeTypeForName(q(layoutType)).inherits(q(jsonType)));
    EXPECT_EQ(types.mimeTypeForName(q(layoutType)).iconName(), q("orvex"));
}

TEST(Install, namesTheLayoutTypeInTheDesktopsTables) {
    const InstalledTree tree;
    EXPECT_TRUE(
        tree.text("share/mime/globs2").contains(q("60:application/x-orvex-layout+json:orvex-roll-layout.json")));
    EXPECT_TRUE(
        tree.text("share/applications/mimeinfo.cache").contains(q("application/x-orvex-layout+json=orvex.desktop;")));
}

} // namespace
} // namespace orvex
