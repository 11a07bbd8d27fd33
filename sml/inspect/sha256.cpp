#include <sml/inspect/sha256.hpp>

#include <openssl/evp.h>

#include <array>
#include <new>
#include <stdexcept>

namespace sml::inspect {

namespace {

void check(int result) {
    if (result != 1) throw std::runtime_error("SHA-256 is not available");
}

}  // namespace

Sha256::Sha256() : context_(EVP_MD_CTX_new()) {
    if (!context_) throw std::bad_alloc();
    check(EVP_DigestInit_ex(context_.get(), EVP_sha256(), nullptr));
}

void Sha256::add(std::string_view bytes) {
    check(EVP_DigestUpdate(context_.get(), bytes.data(), bytes.size()));
}

std::string Sha256::bytes() {
    std::array<unsigned char, 32> sum;
    check(EVP_DigestFinal_ex(context_.get(), sum.data(), nullptr));
    return {sum.begin(), sum.end()};
}

std::string Sha256::hexadecimal() {
    constexpr char digits[] = "0123456789abcdef";
    std::string    text;
    for (char const one : bytes()) {
        auto const byte = static_cast<unsigned char>(one);
        (text += digits[byte >> 4]) += digits[byte & 15];
    }
    return text;
}

void Sha256::Free::operator()(evp_md_ctx_st* context) const { EVP_MD_CTX_free(context); }

}  // namespace sml::inspect
