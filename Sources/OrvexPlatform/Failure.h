#pragma once

#include <QString>

#include <exception>
#include <optional>

namespace orvex {

/// The base of every failure that a person may read: its message is final and ready to show.
class Failure : public std::exception {
public:
    [[nodiscard]] const QString& message() const { return message_; }

    [[nodiscard]] const char* what() const noexcept override { return utf8_.constData(); }

protected:
    explicit Failure(QString message) : message_(std::move(message)), utf8_(message_.toUtf8()) {}

private:
    QString message_;
    QByteArray utf8_;
};

/// What to show of anything that was raised: a failure's own message, or a sentence about what nobody foresaw, such as
/// a want of memory or threads.
[[nodiscard]] QString failureMessage(const std::exception& exception);

/// Does something that may fail. The message of the failure, or nothing.
template <typename Work>
[[nodiscard]] std::optional<QString> failureMessageOf(const Work& work) {
    try {
        work();
        return std::nullopt;
    } catch (const std::exception& exception) {
        return failureMessage(exception);
    }
}

} // namespace orvex
