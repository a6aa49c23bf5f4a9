#include "CommandFiles.h"
#include "CommandText.h"
#include "Commands.h"
#include "Files/FileReplacer.h"
#include "Files/RandomAccessFile.h"
#include "Interrupted.h"
#include "Output/RollPDFUserUnit.h"

namespace orvex {

namespace {

/// The patch itself may leave a half-updated file behind, so it works on a copy that replaces the file when it is done.
void runUserUnit(const std::string& pdf, double value, const CommandContext& context) {
    const QString path = fileArgument(pdf);
    if (isStandardStream(path)) {
        throw CLI::ValidationError("PDF", description("UserUnit 写入原文件，不能使用标准输入",
                                                      "the file is changed in place; standard input cannot be"));
    }
    const auto file = platform::RandomAccessFile::open(path, context.stop);
    auto copy = platform::FileReplacer::open(path);
    file.forEachPiece([&](QByteArrayView piece) { copy.write(piece); });
    RollPDFUserUnit::apply(value, copy.temporaryPath());
    platform::throwIfStopped(context.stop);
    copy.commit();
}

} // namespace

void addUserUnitCommand(CLI::App& app, CommandContext& context) {
    CLI::App* command = app.add_subcommand(
        "userunit", description("在原文件中为卷布 PDF 加入 UserUnit", "add a UserUnit to a roll PDF, in place"));
    const auto pdf = std::make_shared<std::string>();
    const auto value = std::make_shared<double>();
    command
        ->add_option("PDF", *pdf,
                     description("本程序写出的、不含 UserUnit 的 PDF", "a PDF of this program, without a UserUnit"))
        ->required()
        ->type_name("");
    command->add_option("VALUE", *value, description("UserUnit 的值（以 1/72 英寸为单位）", "the unit, in 1/72 inch"))
        ->required()
        ->type_name("");
    command->callback([pdf, value, &context] { runUserUnit(*pdf, *value, context); });
}

} // namespace orvex
