#pragma once

#include "OrvexLanguage.h"

#include <QString>

namespace orvex {

/// How far the work that holds the session has come.
struct SessionProgress {
    qsizetype done = 0; ///< of `total` artworks
    qsizetype total = 0;
    QString what;               ///< a phrase in the language of the moment
    double fraction = 0.0;      ///< 0 to 1, finer than `done` where more is known
    bool isCancellable = false; ///< whether `cancelOperation` would end it

    /// At the start of the artwork after the first `done`.
    [[nodiscard]] static SessionProgress of(qsizetype done, qsizetype total, const QString& what) {
        return {.done = done,
                .total = total,
                .what = what,
                .fraction = static_cast<double>(done) / static_cast<double>(total)};
    }

    /// The same where the originals of the artworks are read.
    [[nodiscard]] static SessionProgress ofReading(qsizetype done, qsizetype total) {
        return of(done, total, spt("读取原图", "Reading originals"));
    }

    bool operator==(const SessionProgress&) const = default;
};

} // namespace orvex
