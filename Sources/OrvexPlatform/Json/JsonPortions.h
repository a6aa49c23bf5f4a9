#pragma once

#include "Json/JsonGrammar.h"
#include "Json/JsonReader.h"

#include <QByteArrayView>

#include <cstddef>
#include <functional>
#include <vector>

namespace orvex::platform {

/// A document that is an array of very many elements. Portions of it are read apart, on all processors, and there is
/// never a tree of the whole. The bytes must stay for as long as this is used.
class JsonPortions {
public:
    /// What one element may have at most. A tree of it may take ten times as much.
    static constexpr qsizetype largestElementBytes = 1 << 26;

    /// Raises JsonError for bytes that are no JSON, and for a document that is no array.
    explicit JsonPortions(QByteArrayView utf8);

    /// At least one.
    [[nodiscard]] std::size_t count() const { return portions_.size(); }

    /// Calls `read` with the number of each portion, from 0, and the array of its elements. What it raises as
    /// JsonError, or the portion itself, is raised here with its place in the whole: the first that is no JSON or else
    /// the first of all.
    void readEach(const std::function<void(std::size_t number, const JsonReader& array)>& read) const;

private:
    [[nodiscard]] JsonReader arrayOf(const JsonPortion& portion) const;

    QByteArrayView text_;
    qsizetype textOffset_; ///< behind a byte order mark
    std::vector<JsonPortion> portions_;
};

} // namespace orvex::platform
