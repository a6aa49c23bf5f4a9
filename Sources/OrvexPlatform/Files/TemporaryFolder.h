#pragma once

#include <QString>

namespace orvex::platform {

/// A folder of this process alone (mode 0700) in the folder that TMPDIR names, or in the system's temporary folder if
/// it names none. It goes with all its content when this does.
class TemporaryFolder {
public:
    /// Raises FileSystemError if it cannot be made.
    TemporaryFolder();

    /// The same under a name of its own. Raises FileSystemError, also if there is a file or folder of that name.
    explicit TemporaryFolder(const QString& name);
    ~TemporaryFolder();

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// The path of a file of that name in it.
    [[nodiscard]] QString filePath(const QString& name) const { return path_ + u'/' + name; }

private:
    QString path_;
};

} // namespace orvex::platform
