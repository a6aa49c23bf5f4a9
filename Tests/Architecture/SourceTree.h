#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace orvex::architecture {

/// One file of program text; the path is relative to the project's root.
struct SourceFile {
    QString path;
    QString text;
};

/// All .h and .cpp files below a folder of the project, ordered by path.
[[nodiscard]] std::vector<SourceFile> sourceFiles(const QString& folder);

/// One #include line.
struct Include {
    QString header;
    int line = 0;
};

[[nodiscard]] std::vector<Include> includesOf(const SourceFile& file);

/// The text with comments and the contents of string and character literals blanked out; lines stay where they are.
[[nodiscard]] QString codeOnly(const QString& text);

/// The part of the program that a path below Sources belongs to, such as "OrvexKit" or "Orvex/Session".
[[nodiscard]] QString moduleOf(const QString& path);

} // namespace orvex::architecture
