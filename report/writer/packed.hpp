#pragma once
// The form in which the content of a chunk stands in a script.

#include <memory>
#include <string>
#include <string_view>

struct libdeflate_compressor;

namespace bradep::report {

/// Bytes as base64, with padding.
std::string base64_of(std::string_view bytes);

/// Packs chunks one after the other, on one thread at a time.
class Packer {
public:
    Packer();

    /// Base64 of the raw deflate of the content. Equal contents give equal texts.
    std::string packed(std::string_view content);

private:
    struct Free {
        void operator()(libdeflate_compressor* compressor) const;
    };

    std::unique_ptr<libdeflate_compressor, Free> compressor_;
    std::string                                  deflated_;
};

}  // namespace bradep::report
