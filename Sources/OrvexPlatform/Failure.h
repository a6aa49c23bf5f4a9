#pragma once

#include <QString>

#include <exception>

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

} // namespace orvex
