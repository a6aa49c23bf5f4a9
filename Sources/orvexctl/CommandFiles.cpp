#include "CommandFiles.h"

#include "Files/FileReplacer.h"
#include "Files/FileSystemError.h"
#include "Files/Paths.h"
#include "Files/RandomAccessFile.h"
#include "Json/JsonWriter.h"
#include "OrvexError.h"
#include "OrvexLanguage.h"
#include "Output/SourceGuard.h"

#include <QFile>

#include <unistd.h>

#include <array>
#include <cerrno>
#include <iostream>

namespace orvex {

namespace {

const QString standardStreamName = QStringLiteral("-");

QByteArray wholeStandardInput(qint64 limitBytes) {
    QByteArray content;
    readStandardInput([&](QByteArrayView piece) {
        content.append(piece);
        if (content.size() > limitBytes) {
            throw platform::FileSystemError(EFBIG, standardStreamName);
        }
    });
    return content;
}

void writeStandardOutput(QByteArrayView bytes) {
    while (!bytes.isEmpty()) {
        const ssize_t count = ::write(STDOUT_FILENO, bytes.data(), static_cast<std::size_t>(bytes.size()));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            throw platform::FileSystemError::last(standardStreamName);
        }
        bytes = bytes.sliced(count);
    }
}

} // namespace

QString argumentText(const std::string& argument) {
    return QFile::decodeName(QByteArray::fromStdString(argument));
}

QString fileArgument(const std::string& argument) {
    const QString text = argumentText(argument);
    if (QFile::encodeName(text).toStdString() != argument) {
        throw OrvexError::invalid(
            spt("路径“%1”不是有效的 UTF-8 文本。", "The path \"%1\" is not valid UTF-8 text.").arg(text));
    }
    return text;
}

bool isStandardStream(const QString& path) {
    return path == standardStreamName;
}

void readStandardInput(const std::function<void(QByteArrayView)>& take) {
    std::array<char, 65536> piece{};
    while (true) {
        const ssize_t count = ::read(STDIN_FILENO, piece.data(), piece.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            throw platform::FileSystemError::last(standardStreamName);
        }
        if (count == 0) {
            return;
        }
        take(QByteArrayView(piece.data(), count));
    }
}

QByteArray readInput(const QString& path, qint64 limitBytes) {
    return isStandardStream(path) ? wholeStandardInput(limitBytes) : platform::readWholeFile(path, limitBytes);
}

void writeOutput(const QString& path, QByteArrayView bytes) {
    if (isStandardStream(path)) {
        writeStandardOutput(bytes);
    } else {
        platform::FileReplacer::replace(path, bytes);
    }
}

void printFile(const QString& path, const std::stop_token& stop) {
    platform::RandomAccessFile::open(path, stop).forEachPiece(writeStandardOutput);
}

void printError(const QString& message) {
    std::cerr << message.toStdString() << std::endl;
}

void printResult(const QJsonValue& value) {
    writeStandardOutput(platform::writeJson(value, platform::JsonForm::pretty));
}

void refuseOverwriting(const QString& output, const QList<QUrl>& inputs) {
    if (!isStandardStream(output) && overwritesSource(platform::fileUrl(output), inputs)) {
        throw OrvexError::invalid(spt("输出位置不能覆盖任何输入文件。请另选一个文件。",
                                      "The output location cannot overwrite any input file. Choose a separate file."));
    }
}

} // namespace orvex
