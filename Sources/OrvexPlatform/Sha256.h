#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

struct evp_md_ctx_st;

namespace orvex::platform {

/// A SHA-256 digest of bytes that come in pieces. One thread.
class Sha256 {
public:
    Sha256();

    void add(QByteArrayView bytes);

    /// The 32 bytes of the digest; nothing can be added after this.
    [[nodiscard]] QByteArray digest();

private:
    struct Free {
        void operator()(evp_md_ctx_st* context) const;
    };

    std::unique_ptr<evp_md_ctx_st, Free> context_;
};

/// The SHA-256 digest of bytes as 64 lower-case hexadecimal digits.
[[nodiscard]] QString sha256Hex(QByteArrayView bytes);

/// Whether a text has the form that `sha256Hex` gives: upper-case digits are none of it.
[[nodiscard]] bool isSha256Hex(const QString& text);

} // namespace orvex::platform
