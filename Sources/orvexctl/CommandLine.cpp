#include "CommandLine.h"

#include "CommandFiles.h"
#include "CommandText.h"
#include "Commands.h"
#include "Failure.h"
#include "Interrupted.h"
#include "Interruption.h"
#include "OrvexLanguage.h"
#include "OrvexQAWorkspace.h"

#include <QLocale>

#include <algorithm>

namespace orvex {

namespace {

void useLanguage(const std::string& tag) {
    OrvexLanguage::setConfigured(QString::fromStdString(tag));
    // Shown numbers follow the language that was asked for.
    QLocale::setDefault(QLocale(tag == "en" ? QStringLiteral("en_US") : QStringLiteral("zh_CN")));
}

/// The stores would take a folder that is not understood for none, and use the operator's own data.
void requireWorkspace(const std::string&) {
    if (!OrvexQAWorkspace::directory()) {
        throw CLI::ValidationError("--orvex-qa-workspace",
                                   description("其后须为文件夹的绝对路径", "an absolute path of a folder must follow"));
    }
}

int usageStatus(const CLI::App& app, const CLI::ParseError& error) {
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
        return app.exit(error); // help was asked for
    }
    // What exactly is wrong, the parser tells in English alone.
    printError(spt("用法错误（%1）", "%1").arg(QString::fromLocal8Bit(error.what())));
    printError(spt("用法：orvexctl [--language en|zh-Hans] COMMAND ...（--help 显示更多）",
                   "usage: orvexctl [--language en|zh-Hans] COMMAND ... (--help tells more)"));
    return exitUsage;
}

void addCommands(CLI::App& app, CommandContext& context) {
    app.require_subcommand(1);
    app.add_option_function<std::string>(
           "--language", useLanguage,
           spt("消息与数字所用的语言", "the language of messages and shown numbers").toStdString())
        ->check(CLI::IsMember({"en", "zh-Hans"}))
        ->trigger_on_parse();
    // Read from the process's own arguments where it is needed.
    app.add_option_function<std::string>(
           "--orvex-qa-workspace", requireWorkspace,
           spt("代替应用文件夹的文件夹", "the folder that stands for the application folder").toStdString())
        ->type_name("DIR");
    addRollCommand(app, context);
    addInspectCommand(app, context);
    addIccCommand(app, context);
    addPackCommand(app, context);
    addRenderCommand(app, context);
    addCheckCommand(app, context);
    addUserUnitCommand(app, context);
    addPreviewCommand(app, context);
    addPrintersCommand(app, context);
    addTelemetryCommand(app, context);
    addFingerprintCommand(app, context);
    addJobsCommand(app, context);
    addPresetsCommand(app, context);
    addJournalCommand(app, context);
    addDiagnosticsCommand(app, context);
    addApplyCommand(app, context);
}

/// The language that the arguments ask for; empty if none.
std::string languageTag(const std::vector<std::string>& arguments) {
    const std::string flag = "--language";
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        if (*argument == flag && argument + 1 != arguments.end()) {
            return argument[1];
        }
        if (argument->starts_with(flag + '=')) {
            return argument->substr(flag.size() + 1);
        }
    }
    return {};
}

/// The help texts are made before the arguments are parsed, so their language is looked for first.
void useLanguageOfArguments(int argc, const char* const* argv) {
    const std::string tag = languageTag({argv, argv + argc});
    if (tag == "en" || tag == "zh-Hans") {
        useLanguage(tag);
    }
}

/// Whether an argument stands behind an option that takes it as its value.
bool isValueOf(const CLI::App& app, const std::string& previous) {
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
        if (const CLI::Option* option = command->get_option_no_throw(previous)) {
            return option->get_items_expected_max() > 0;
        }
    }
    return false;
}

/// The arguments as the parser takes them, last first. It would take a file name in brackets apart, as a list of
/// several.
std::vector<std::string> parserArguments(const CLI::App& app, int argc, const char* const* argv) {
    std::vector<std::string> arguments;
    for (int index = 1; index < argc; ++index) {
        const std::string argument = argv[index];
        const bool isBracketed = argument.starts_with('[') && argument.ends_with(']');
        const bool isFileName = isBracketed && !isValueOf(app, argv[index - 1]);
        arguments.push_back(isFileName ? "./" + argument : argument);
    }
    std::reverse(arguments.begin(), arguments.end());
    return arguments;
}

int run(int argc, const char* const* argv) {
    const Interruption interruption;
    useLanguageOfArguments(argc, argv);
    CommandContext context{.stop = interruption.token()};
    CLI::App app(
        spt("为 60 英寸卷布打印机准备大幅面作品。", "Prepares large-format artwork for a 60-inch canvas roll printer.")
            .toStdString(),
        "orvexctl");
    addCommands(app, context);
    try {
        app.parse(parserArguments(app, argc, argv));
        return context.exitStatus;
    } catch (const CLI::ParseError& error) {
        return usageStatus(app, error);
    }
}

} // namespace

int runCommandLine(int argc, const char* const* argv) {
    try {
        return run(argc, argv);
    } catch (const platform::Interrupted&) {
        return exitInterrupted;
    } catch (const std::exception& exception) {
        printError(failureMessage(exception));
    }
    return exitRefused;
}

} // namespace orvex
