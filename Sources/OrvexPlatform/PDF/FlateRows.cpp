#include "PDF/FlateRows.h"

#include "Imaging/OverlappedRows.h"
#include "Interrupted.h"
#include "PDF/RowPredictor.h"

#include <QByteArray>
#include <QtEndian>

#include <isa-l/igzip_lib.h>
#include <zlib.h>

#include <algorithm>
#include <deque>
#include <future>
#include <stdexcept>
#include <thread>

namespace orvex::platform {

namespace {

/// A strip on its way into the stream.
struct CompressedStrip {
    QByteArray deflated;
    quint32 adler = 0;
    qint64 plainBytes = 0;
    qint64 endRow = 0; ///< the first row after it
};

std::uint8_t* unsignedBytes(QByteArray& bytes) {
    return reinterpret_cast<std::uint8_t*>(bytes.data());
}

/// Raw deflate blocks (RFC 1951) that stand for themselves: they refer to nothing before them and end on a whole byte.
QByteArray deflate(QByteArray& plain, bool isLast) {
    // Level 1 gives the size of zlib's level 1 at several times its speed; incompressible data grows by a few bytes for
    // each stored block of 65,535.
    constexpr qsizetype slackBytes = 1024;
    // Far matches are few among the differences of a photograph, and looking for them costs more than they save.
    constexpr std::uint16_t windowBits = 12;
    std::vector<std::uint8_t> levelBuffer(ISAL_DEF_LVL1_DEFAULT);
    QByteArray deflated(plain.size() + plain.size() / 1024 + slackBytes, Qt::Uninitialized);
    isal_zstream stream;
    isal_deflate_init(&stream);
    stream.hist_bits = windowBits;
    stream.level = 1;
    stream.level_buf = levelBuffer.data();
    stream.level_buf_size = static_cast<std::uint32_t>(levelBuffer.size());
    stream.end_of_stream = isLast ? 1 : 0;
    stream.flush = isLast ? NO_FLUSH : FULL_FLUSH;
    stream.next_in = unsignedBytes(plain);
    stream.avail_in = static_cast<std::uint32_t>(plain.size());
    stream.next_out = unsignedBytes(deflated);
    stream.avail_out = static_cast<std::uint32_t>(deflated.size());
    if (isal_deflate(&stream) != COMP_OK || stream.avail_in != 0 || stream.avail_out == 0) {
        throw std::logic_error("a strip does not fit its deflate buffer");
    }
    deflated.truncate(static_cast<qsizetype>(stream.total_out));
    return deflated;
}

CompressedStrip compress(const OwnedStrip& strip, const Raster& raster, Samples samples) {
    constexpr quint32 adlerOfNothing = 1; // RFC 1950
    QByteArray plain = predictRows(strip.bytes, raster.format(), raster.storedWidth(), samples);
    CompressedStrip result;
    result.plainBytes = plain.size();
    result.adler = isal_adler32(adlerOfNothing, unsignedBytes(plain), static_cast<std::uint64_t>(plain.size()));
    result.endRow = strip.firstRow + strip.rowCount;
    result.deflated = deflate(plain, result.endRow == raster.storedHeight());
    return result;
}

/// Joins strips, in order, into one zlib stream.
class ZlibStream {
public:
    explicit ZlibStream(const std::function<void(QByteArrayView)>& output) : output_(output) {
        output_(QByteArrayView("\x78\x01", 2)); // RFC 1950, 2.2: deflate with a window of 32 KiB, fastest level
    }

    void append(const CompressedStrip& strip) {
        adler_ = static_cast<quint32>(adler32_combine(adler_, strip.adler, strip.plainBytes));
        output_(strip.deflated);
    }

    void finish() {
        const quint32 adler = qToBigEndian(adler_);
        output_(QByteArrayView(reinterpret_cast<const char*>(&adler), sizeof(adler)));
    }

private:
    const std::function<void(QByteArrayView)>& output_;
    quint32 adler_ = 1;
};

/// Runs the work in a thread of its own, or, where the system has none to give, when its result is asked for.
template <typename Work>
std::future<CompressedStrip> inBackground(Work work) {
    return std::async(std::launch::async | std::launch::deferred, std::move(work));
}

} // namespace

int pdfBitsPerComponent(const PixelFormat& format) {
    return std::min(format.bitsPerComponent, 16);
}

void flateRows(const Raster& raster, Samples samples, const std::function<void(QByteArrayView)>& output,
               const std::stop_token& stop, const RowProgress& progress) {
    const std::size_t largestPending =
        std::clamp(std::thread::hardware_concurrency(), 1U, largestCompressingThreads) + 1;
    std::deque<std::future<CompressedStrip>> pending;
    ZlibStream stream(output);
    const auto tell = [&](qint64 rowsDone) {
        if (progress) {
            progress(rowsDone, raster.storedHeight());
        }
    };
    const auto writeOldest = [&] {
        const CompressedStrip strip = pending.front().get();
        pending.pop_front();
        stream.append(strip);
        tell(strip.endRow);
    };
    tell(0);
    overlappedStrips(raster, [&](OwnedStrip strip) {
        throwIfStopped(stop);
        pending.push_back(
            inBackground([owned = std::move(strip), &raster, samples] { return compress(owned, raster, samples); }));
        if (pending.size() >= largestPending) {
            writeOldest();
        }
    });
    while (!pending.empty()) {
        writeOldest();
    }
    stream.finish();
}

} // namespace orvex::platform
