#include "Json/JsonError.h"
#include "Json/JsonWriter.h"
#include "Layout/RollLayout.h"
#include "Layout/RollWorkspaceFile.h"
#include "OrvexError.h"

#include <cstdint>
#include <cstdlib>

// Layouts and workspace files of any bytes: each is refused, or read, validated and written so that it reads the same.

using namespace orvex;

namespace {

void mustHold(bool condition) {
    if (!condition) {
        std::abort();
    }
}

/// What has been written must be readable, whatever it was read from.
template <typename Read>
auto mustRead(Read&& read) {
    try {
        return read();
    } catch (const Failure&) {
        std::abort();
    }
}

RollLayout readLayout(QByteArrayView bytes, LayoutCoding coding) {
    const auto numbers =
        coding == LayoutCoding::lenient ? platform::JsonNumbers::orNonFiniteText : platform::JsonNumbers::finite;
    return RollLayout::fromJson(platform::JsonReader::parse(bytes, numbers), coding);
}

QByteArray write(const RollLayout& layout, LayoutCoding coding) {
    return platform::writeJson(layout.toJson(coding), platform::JsonForm::pretty);
}

void exerciseLayout(QByteArrayView bytes, LayoutCoding coding) {
    const RollLayout layout = readLayout(bytes, coding);
    (void)layout.structureValidationError();
    (void)layout.exportValidationError();
    (void)layout.lengthInches();
    const QByteArray written = write(layout, coding);
    mustHold(write(mustRead([&] { return readLayout(written, coding); }), coding) == written);
}

void exerciseWorkspace(QByteArrayView bytes) {
    const auto file = RollWorkspaceFile::decode(bytes);
    const QByteArray written = file.encode();
    mustHold(mustRead([&] { return RollWorkspaceFile::decode(written); }).encode() == written);
    file.validate();
    mustHold(!file.layout.structureValidationError());
}

template <typename Exercise>
void unlessRefused(Exercise&& exercise) {
    try {
        exercise();
    } catch (const Failure&) {
        // A refusal is an answer.
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArrayView bytes(data, static_cast<qsizetype>(size));
    unlessRefused([&] { exerciseLayout(bytes, LayoutCoding::checked); });
    unlessRefused([&] { exerciseLayout(bytes, LayoutCoding::lenient); });
    unlessRefused([&] { exerciseWorkspace(bytes); });
    return 0;
}
