#pragma once

#include <QByteArray>

namespace orvex {

/// Answers one request of `apply`: a line of JSON without its line feed, by one line of JSON. Never raises.
[[nodiscard]] QByteArray answerRequest(QByteArrayView line);

/// The answer to a line that is no request, whatever its id may have been.
[[nodiscard]] QByteArray usageAnswer(const QString& message);

} // namespace orvex
