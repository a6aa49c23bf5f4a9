#include "Sha256.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <new>

namespace orvex::platform {

namespace {

// A built-in digest fails for want of memory only.
void mustSucceed(int result) {
    if (result != 1) {
        throw std::bad_alloc();
    }
}

} // namespace

void Sha256::Free::operator()(evp_md_ctx_st* context) const {
    EVP_MD_CTX_free(context);
    // What the library keeps for a thread goes with the thread itself only if the process lives longer.
    OPENSSL_thread_stop();
}

Sha256::Sha256() : context_(EVP_MD_CTX_new()) {
    mustSucceed(EVP_DigestInit_ex(context_.get(), EVP_sha256(), nullptr));
}

void Sha256::add(QByteArrayView bytes) {
    mustSucceed(EVP_DigestUpdate(context_.get(), bytes.data(), static_cast<std::size_t>(bytes.size())));
}

QByteArray Sha256::digest() {
    std::array<unsigned char, EVP_MAX_MD_SIZE> bytes{};
    unsigned int length = 0;
    mustSucceed(EVP_DigestFinal_ex(context_.get(), bytes.data(), &length));
    QByteArray digest(static_cast<qsizetype>(length), Qt::Uninitialized);
    std::copy_n(bytes.begin(), length, digest.begin());
    return digest;
}

QString sha256Hex(QByteArrayView bytes) {
    Sha256 hash;
    hash.add(bytes);
    return QString::fromLatin1(hash.digest().toHex());
}

bool isSha256Hex(const QString& text) {
    constexpr qsizetype digits = 64;
    return text.size() == digits && std::ranges::all_of(text, [](QChar digit) {
               return (digit >= u'0' && digit <= u'9') || (digit >= u'a' && digit <= u'f');
           });
}

} // namespace orvex::platform
