#pragma once

#include <memory>
#include <string>
#include <string_view>

struct evp_md_ctx_st;

namespace sml::inspect {

/// Computes a SHA-256. All functions throw `std::runtime_error` if it is not available.
class Sha256 {
public:
    Sha256();

    void add(std::string_view bytes);

    /// The 32 bytes of the hash; nothing can be added afterwards.
    std::string bytes();
    /// The same as 64 hexadecimal digits in lower case.
    std::string hexadecimal();

private:
    struct Free {
        void operator()(evp_md_ctx_st* context) const;
    };
    std::unique_ptr<evp_md_ctx_st, Free> context_;
};

}  // namespace sml::inspect
