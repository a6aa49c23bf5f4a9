#pragma once

#include <QStringList>
#include <QUrl>

#include <optional>

namespace orvex {

/// The folder that automated runs put in place of the application folder.
class OrvexQAWorkspace {
public:
    /// The folder named by the arguments of this process.
    [[nodiscard]] static std::optional<QUrl> directory();

    /// The folder that stands behind the first "--orvex-qa-workspace": an absolute path, standardised. Absent without
    /// the flag, or if no well-formed path follows it.
    [[nodiscard]] static std::optional<QUrl> directory(const QStringList& arguments);
};

} // namespace orvex
