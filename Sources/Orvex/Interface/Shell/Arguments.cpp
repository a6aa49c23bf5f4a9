#include "Arguments.h"

#include "Files/Paths.h"
#include "OrvexLanguage.h"
#include "OrvexQAWorkspace.h"
#include "PanelTexts.h"

#include <QCommandLineParser>

namespace orvex {

namespace {

constexpr int usageStatus = 2;
const QString helpOption = QStringLiteral("help");
const QString versionOption = QStringLiteral("version");
const QString workspaceOption = QStringLiteral("orvex-qa-workspace");

Arguments::Answer wrongUsage(const QString& reason) {
    return {.exitStatus = usageStatus,
            .text = reason + u'\n' +
                    spt("用法：orvex [选项] [排版.json | 图像…]（--help 显示更多）",
                        "usage: orvex [options] [LAYOUT.json | IMAGE...] (--help tells more)")};
}

QString helpText() {
    return spt("为 60 英寸卷布打印机准备大幅面作品。\n"
               "\n"
               "用法：orvex [选项] [排版.json | 图像…]\n"
               "\n"
               "启动后打开所给的排版，或将所给的图像添加到画布。\n"
               "\n"
               "  --orvex-qa-workspace DIR  代替应用文件夹的文件夹（绝对路径）\n"
               "  --version                 显示版本后退出\n"
               "  -h, --help                显示此帮助后退出",
               "Prepares large-format artwork for a 60-inch canvas roll printer.\n"
               "\n"
               "usage: orvex [options] [LAYOUT.json | IMAGE...]\n"
               "\n"
               "Opens the given layout, or adds the given images to the canvas, once it has started.\n"
               "\n"
               "  --orvex-qa-workspace DIR  the folder that stands for the application folder (absolute path)\n"
               "  --version                 print the version and exit\n"
               "  -h, --help                print this help and exit");
}

QString unknownOptions(const QCommandLineParser& parser) {
    const QStringList names = parser.unknownOptionNames();
    return names.isEmpty() ? spt("选项缺少值。", "An option lacks its value.")
                           : spt("未知选项：%1", "Unknown option: %1").arg(names.join(QStringLiteral(", ")));
}

bool isLayout(const QUrl& file) {
    return file.fileName().endsWith(QStringLiteral(".json"), Qt::CaseInsensitive);
}

/// One layout, or any number of images.
Arguments withFiles(const QStringList& paths) {
    Arguments arguments;
    for (const QString& path : paths) {
        const QUrl file = platform::fileUrl(path);
        if (!isLayout(file)) {
            arguments.images.append(file);
        } else if (!arguments.layout) {
            arguments.layout = file;
        } else {
            arguments.answer = wrongUsage(spt("一次只能打开一个排版。", "Only one layout can be opened at a time."));
        }
    }
    if (arguments.layout && !arguments.images.isEmpty()) {
        arguments.answer =
            wrongUsage(spt("排版和图像不能同时打开。", "A layout and images cannot be opened at the same time."));
    }
    return arguments;
}

} // namespace

Arguments Arguments::parse(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.addOptions(
        {{{QStringLiteral("h"), helpOption}, {}}, {versionOption, {}}, {workspaceOption, {}, QStringLiteral("DIR")}});
    if (!parser.parse(arguments)) {
        return {.answer = wrongUsage(unknownOptions(parser))};
    }
    if (parser.isSet(helpOption)) {
        return {.answer = Answer{.exitStatus = 0, .text = helpText()}};
    }
    if (parser.isSet(versionOption)) {
        return {.answer = Answer{.exitStatus = 0, .text = QStringLiteral("orvex ") + appVersion()}};
    }
    // The stores would take a folder that is not understood for none, and use the operator's own data.
    if (parser.isSet(workspaceOption) && !OrvexQAWorkspace::directory(arguments)) {
        return {.answer = wrongUsage(spt("--orvex-qa-workspace 之后须为文件夹的绝对路径。",
                                         "--orvex-qa-workspace: an absolute path of a folder must follow."))};
    }
    return withFiles(parser.positionalArguments());
}

} // namespace orvex
