#pragma once

#include "Layout/RollLayout.h"
#include "Layout/RollWorkspaceFile.h"

#include <QByteArray>
#include <QList>
#include <QUrl>

#include <optional>

namespace orvex {

/// A LAYOUT argument: a bare layout or a workspace file, told apart by their keys. The form it came in is kept.
struct LayoutFile {
    RollLayout layout;
    std::optional<RollWorkspaceFile> workspace; ///< absent for a bare layout

    /// Reads a path or, for "-", standard input. Raises FileSystemError, JsonError, and OrvexError for a workspace that
    /// the window would refuse.
    [[nodiscard]] static LayoutFile read(const QString& path);
    [[nodiscard]] static LayoutFile parse(const QByteArray& json);

    /// The file's bytes with `layout` as it is now.
    [[nodiscard]] QByteArray encoded() const;

    [[nodiscard]] QList<QUrl> sources() const;
};

} // namespace orvex
