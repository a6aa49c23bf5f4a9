#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QJsonValue>
#include <QList>
#include <QString>
#include <QUrl>

#include <functional>
#include <stop_token>
#include <string>

namespace orvex {

/// An argument of the command line as text.
[[nodiscard]] QString argumentText(const std::string& argument);

/// An argument that names a file or folder. Raises OrvexError for one that is no text, which would name another.
[[nodiscard]] QString fileArgument(const std::string& argument);

/// Whether a file argument means standard input or output.
[[nodiscard]] bool isStandardStream(const QString& path);

/// Hands over standard input, piece by piece as it comes, until its end. Raises FileSystemError.
void readStandardInput(const std::function<void(QByteArrayView)>& take);

/// All bytes of a file or of standard input. Raises FileSystemError, also for more than `limitBytes`.
[[nodiscard]] QByteArray readInput(const QString& path, qint64 limitBytes);

/// Replaces a file by these bytes, or writes them to standard output. Raises FileSystemError.
void writeOutput(const QString& path, QByteArrayView bytes);

/// Writes the content of a file to standard output. Raises FileSystemError and Interrupted.
void printFile(const QString& path, const std::stop_token& stop);

/// Says something on standard error.
void printError(const QString& message);

/// Prints a result on standard output, indented.
void printResult(const QJsonValue& value);

/// Raises OrvexError if the output would write over one of the inputs. Standard streams are never the same file.
void refuseOverwriting(const QString& output, const QList<QUrl>& inputs);

} // namespace orvex
