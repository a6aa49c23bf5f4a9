#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <stdexcept>

namespace orvex::test {

/// A folder that lives as long as its test.
class TemporaryFolder {
public:
    [[nodiscard]] QString path(const QString& name) const { return folder_.filePath(name); }

    [[nodiscard]] QString path() const { return folder_.path(); }

    /// Writes a file of these bytes and gives its path.
    QString write(const QString& name, const QByteArray& bytes) const {
        QFile file(path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush()) {
            throw std::runtime_error("a test file cannot be written");
        }
        return path(name);
    }

    [[nodiscard]] static QByteArray read(const QString& path) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            throw std::runtime_error("a test file cannot be read");
        }
        return file.readAll();
    }

    /// All names in the folder, hidden ones included, sorted.
    [[nodiscard]] QStringList names() const {
        return QDir(path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                      QDir::Name);
    }

private:
    QTemporaryDir folder_;
};

} // namespace orvex::test
