#pragma once

#include "Files/FileDescriptor.h"
#include "Process/ChildProcess.h"

#include <array>
#include <optional>

namespace orvex::platform {

/// The pipes of a child and what has come out of them. One thread.
class ChildOutput {
public:
    /// Makes the pipes, closed on exec, their read ends non-blocking. Raises ChildStartError.
    explicit ChildOutput(const ChildRules& rules);

    /// The ends that become the child's standard output and standard error.
    [[nodiscard]] int standardOutput() const { return output_.writeEnd.get(); }

    [[nodiscard]] int standardError() const { return errors_ ? errors_->writeEnd.get() : standardOutput(); }

    /// Closes this process's copies of the child's ends, so that the child's own are the last.
    void closeWriteEnds();

    /// Takes what is there now of both streams, within the reads of one turn.
    void drainBoth();

    [[nodiscard]] bool isTooLarge() const { return isTooLarge_; }

    [[nodiscard]] QByteArray takeKept() { return std::move(kept_); }

private:
    struct Pipe {
        FileDescriptor readEnd;
        FileDescriptor writeEnd;
    };

    [[nodiscard]] static Pipe makePipe(int capacityBytes);
    void drain(const Pipe& pipe, bool isKept);
    void take(QByteArrayView piece, bool isKept);
    void keepWhatFits(QByteArrayView piece);
    void keepUnlessTooLarge(QByteArrayView piece, bool isKept);

    static constexpr int pieceBytes = 8192;

    ChildRules rules_;
    Pipe output_;
    std::optional<Pipe> errors_;
    std::array<char, pieceBytes> buffer_;
    QByteArray kept_;
    qint64 countedBytes_ = 0;
    bool isTooLarge_ = false;
};

} // namespace orvex::platform
