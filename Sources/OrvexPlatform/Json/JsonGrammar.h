#pragma once

#include <QByteArrayView>

#include <optional>

namespace orvex::platform {

/// Arrays and objects within each other at most; as many as Qt's parser takes.
inline constexpr int deepestJsonNesting = 1024;

/// The offset of the first byte at which a text departs from the grammar of JSON (RFC 8259), or from the limit of
/// nesting; absent for a text that is JSON. Qt's parser is looser: it takes numbers such as "1." and ".5", line feeds
/// and other control characters in texts, and unknown escapes. Bytes beyond ASCII are taken as they are.
[[nodiscard]] std::optional<qsizetype> jsonGrammarError(QByteArrayView text);

} // namespace orvex::platform
