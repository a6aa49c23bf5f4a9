#include "Apply.h"
#include "CommandFiles.h"
#include "CommandText.h"
#include "Commands.h"
#include "Files/FileSystemError.h"
#include "OrvexLanguage.h"

#include <unistd.h>

#include <array>
#include <cerrno>

namespace orvex {

namespace {

constexpr qsizetype largestLineBytes = 1 << 25; // tens of thousands of artworks
const QString standardOutput = QStringLiteral("-");

/// Cuts standard input into lines and answers each. A line beyond the limit is answered as none and passed over, so
/// that memory stays bounded.
class LineLoop {
public:
    void run() {
        std::array<char, 65536> piece{};
        while (true) {
            const ssize_t count = ::read(STDIN_FILENO, piece.data(), piece.size());
            if (count < 0 && errno == EINTR) {
                continue;
            }
            if (count < 0) {
                throw platform::FileSystemError::last(QStringLiteral("-"));
            }
            if (count == 0) {
                break;
            }
            take(QByteArrayView(piece.data(), count));
        }
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
