#include "Process/ChildOutput.h"

#include "Files/FileSystemError.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace orvex::platform {

namespace {

[[noreturn]] void failPipes() {
    throw ChildStartError(ChildStartError::Stage::pipes, FileSystemError::last(QStringLiteral("pipe")).message());
}

/// Bytes read, 0 at the end, negative if there is nothing now.
ssize_t readPiece(int descriptor, char* buffer, std::size_t size) {
    ssize_t count = -1;
    do {
        count = ::read(descriptor, buffer, size);
    } while (count < 0 && errno == EINTR);
    return count;
}

} // namespace

ChildOutput::ChildOutput(const ChildRules& rules) : rules_(rules), output_(makePipe(rules.readsPerTurn * pieceBytes)) {
    if (rules.pipes == ChildPipes::separate) {
        errors_ = makePipe(rules.readsPerTurn * pieceBytes);
    }
}

ChildOutput::Pipe ChildOutput::makePipe(int capacityBytes) {
    std::array<int, 2> ends{-1, -1};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        failPipes();
    }
    Pipe pipe{.readEnd = FileDescriptor(ends[0]), .writeEnd = FileDescriptor(ends[1])};
    const int flags = ::fcntl(pipe.readEnd.get(), F_GETFL);
    if (flags < 0 || ::fcntl(pipe.readEnd.get(), F_SETFL, flags | O_NONBLOCK) != 0) {
        failPipes();
    }
    // As much as one turn reads: a child that writes 10 MB then waits for 40 turns instead of 160. Where the system
    // grants no larger pipe, it stays as it is.
    ::fcntl(pipe.readEnd.get(), F_SETPIPE_SZ, capacityBytes);
    return pipe;
}

void ChildOutput::closeWriteEnds() {
    output_.writeEnd = FileDescriptor();
    if (errors_) {
        errors_->writeEnd = FileDescriptor();
    }
}

void ChildOutput::drainBoth() {
    drain(output_, true);
    if (errors_) {
        drain(*errors_, false);
    }
}

void ChildOutput::drain(const Pipe& pipe, bool isKept) {
    for (int turn = 0; turn < rules_.readsPerTurn; ++turn) {
        const ssize_t count = readPiece(pipe.readEnd.get(), buffer_.data(), buffer_.size());
        if (count <= 0) {
            return;
        }
        take(QByteArrayView(buffer_.data(), count), isKept);
    }
}

void ChildOutput::take(QByteArrayView piece, bool isKept) {
    if (rules_.overflow == ChildOverflow::discarded) {
        keepWhatFits(piece);
    } else {
        keepUnlessTooLarge(piece, isKept);
    }
}

void ChildOutput::keepWhatFits(QByteArrayView piece) {
    const qsizetype remaining = rules_.outputLimitBytes - kept_.size();
    kept_.append(piece.first(std::min(piece.size(), remaining)));
    isTooLarge_ = isTooLarge_ || remaining < piece.size();
}

void ChildOutput::keepUnlessTooLarge(QByteArrayView piece, bool isKept) {
    countedBytes_ += piece.size();
    isTooLarge_ = isTooLarge_ || countedBytes_ > rules_.outputLimitBytes;
    if (isKept && !isTooLarge_) {
        kept_.append(piece);
    }
}

} // namespace orvex::platform
