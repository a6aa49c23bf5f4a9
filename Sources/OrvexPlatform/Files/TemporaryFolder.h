#pragma once

#include <QString>
#include <QTemporaryDir>

namespace orvex::platform {

/// A folder of this process alone (mode 0700) in the system's temporary folder, which is the one that TMPDIR names. It
/// goes with all its content when this does.
class TemporaryFolder {
public:
    /// Raises FileSystemError if it cannot be made.
    TemporaryFolder();
    ~TemporaryFolder();

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// The path of a file of that name in it.
    [[nodiscard]] QString filePath(const QString& name) const { return folder_.filePath(name); }

private:
    QTemporaryDir folder_;
};

} // namespace orvex::platform
