#pragma once

#include <QByteArrayView>

#include <optional>
#include <vector>

namespace orvex::platform {

/// Arrays and objects within each other at most; as many as Qt's parser takes.
inline constexpr int deepestJsonNesting = 1024;

/// Some neighbouring elements of an array.
struct JsonPortion {
    qsizetype begin = 0; ///< the offset of its first byte in the document, and that of the byte behind its last one
    qsizetype end = 0;
    qsizetype firstIndex = 0; ///< of its first element in the array
    qsizetype count = 0;      ///< of its elements

    bool operator==(const JsonPortion&) const = default;
};

/// A document, looked at without making anything of what stands in it.
struct JsonOutline {
    /// The offset of the first byte at which the document departs from the grammar of JSON (RFC 8259), or from the
    /// limit of nesting; absent for a document that is JSON. Qt's parser is looser: it takes numbers such as "1." and
    /// ".5", line feeds and other control characters in texts, and unknown escapes. Bytes beyond ASCII are taken as
    /// they are.
    std::optional<qsizetype> grammarError = std::nullopt;

    /// The elements of a document that is an array, at least one portion; none for another document. A portion is large
    /// enough to be worth some work, and small enough to share the work out evenly.
    std::vector<JsonPortion> portions = {};
};

[[nodiscard]] JsonOutline jsonOutline(QByteArrayView text);

/// The grammar error of the outline alone.
[[nodiscard]] std::optional<qsizetype> jsonGrammarError(QByteArrayView text);

} // namespace orvex::platform
