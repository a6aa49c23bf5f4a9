#pragma once

#include "ChangedTrees.h"
#include "ChildProcess.h"
#include "Failure.h"
#include "TemporaryFolder.h"

#include <QFile>
#include <QUrl>

#include <string>

namespace orvex::test {

/// The message of the failure that an operation ends in, or "(none)".
template <typename Operation>
std::string failureOf(Operation&& operation) {
    try {
        operation();
    } catch (const Failure& failure) {
        return failure.message().toStdString();
    }
    return "(none)";
}

/// A file as another program wrote it.
inline QByteArray storedFixture(const char* name) {
    return TemporaryFolder::read(QStringLiteral(ORVEX_FIXTURES "/Stores/") + QString::fromUtf8(name));
}

/// Every other spelling of a JSON text that means the same, with line feeds between its tokens.
inline QByteArrayList spellingsOf(const QByteArray& json) {
    return {json,
            QByteArray(json).replace("\n", "\r\n"),
            "\xEF\xBB\xBF" + json,
            QByteArray(json).replace("\n", "\n\t "),
            " \r\n" + json + "\n\n",
            text(tree(json)),
            QByteArray(json).replace("\\/", "/"),
            QByteArray(json).replace("\": ", "\" : ")};
}

} // namespace orvex::test
