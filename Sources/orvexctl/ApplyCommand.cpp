#include "Apply.h"
#include "CommandFiles.h"
#include "CommandText.h"
#include "Commands.h"
#include "OrvexLanguage.h"

namespace orvex {

namespace {

constexpr qsizetype largestLineBytes = 1 << 25; // tens of thousands of artworks
const QString standardOutput = QStringLiteral("-");

/// Cuts standard input into lines and answers each. A line beyond the limit is answered as none and passed over, so
/// that memory stays bounded.
class LineLoop {
public:
    void run() {
        readStandardInput([this](QByteArrayView piece) { take(piece); });
        if (!line_.isEmpty() || isTooLong_) {
            endLine();
        }
    }

private:
    void take(QByteArrayView bytes) {
        while (!bytes.isEmpty()) {
            const qsizetype lineFeed = bytes.indexOf('\n');
            append(lineFeed < 0 ? bytes : bytes.first(lineFeed));
            if (lineFeed < 0) {
                return;
            }
            endLine();
            bytes = bytes.sliced(lineFeed + 1);
        }
    }

    void append(QByteArrayView bytes) {
        isTooLong_ = isTooLong_ || line_.size() + bytes.size() > largestLineBytes;
        if (isTooLong_) {
            line_ = QByteArray();
        } else {
            line_.append(bytes);
        }
    }

    void endLine() {
        const QByteArray answer =
            isTooLong_ ? usageAnswer(spt("该行过长。", "The line is too long.")) : answerRequest(line_);
        writeOutput(standardOutput, answer + '\n');
        line_.clear();
        isTooLong_ = false;
    }

    QByteArray line_;
    bool isTooLong_ = false;
};

} // namespace

void addApplyCommand(CLI::App& app, CommandContext&) {
    CLI::App* command =
        app.add_subcommand("apply", description("逐行回答标准输入中的 JSON 请求",
                                                "answer requests, one JSON line each, from standard input"));
    command->callback([] { LineLoop().run(); });
}

} // namespace orvex
