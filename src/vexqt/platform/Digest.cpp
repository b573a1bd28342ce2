#include "vexqt/platform/Digest.h"

#include <openssl/evp.h>

#include <array>
#include <new>

#include "vexqt/platform/error.h"

namespace vexqt {

namespace {

/// The library fails for want of memory, or where somebody has configured SHA-256 away.
void check(int isDone) {
    if (isDone != 1) throw Error("SHA-256 is not to be had on this system");
}

evp_md_ctx_st* newContext() {
    evp_md_ctx_st* context = EVP_MD_CTX_new();
    if (context == nullptr) throw std::bad_alloc();
    return context;
}

}  // namespace

void Digest::Free::operator()(evp_md_ctx_st* context) const { EVP_MD_CTX_free(context); }

Digest::Digest() : context_(newContext()) {
    check(EVP_DigestInit_ex(context_.get(), EVP_sha256(), nullptr));
}

void Digest::add(ByteView bytes) {
    check(EVP_DigestUpdate(context_.get(), bytes.data(), bytes.size()));
}

std::string Digest::hex() const {
    const Context finished(newContext());  // To finish a context is to end it.
    check(EVP_MD_CTX_copy_ex(finished.get(), context_.get()));
    std::array<std::uint8_t, EVP_MAX_MD_SIZE> bytes{};
    unsigned length = 0;
    check(EVP_DigestFinal_ex(finished.get(), bytes.data(), &length));

    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    for (unsigned i = 0; i < length; ++i) {
        text += kDigits[bytes[i] >> 4];
        text += kDigits[bytes[i] & 0xF];
    }
    return text;
}

}  // namespace vexqt
