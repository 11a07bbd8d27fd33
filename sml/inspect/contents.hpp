#pragma once
// Bytes that have been verified, prepared for reading any part of them again.

#include <sml/inspect/long_containers.hpp>
#include <sml/inspect/type.hpp>
#include <sml/inspect/verify.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace sml::inspect {

/// The value that a reader makes of some bytes: bytes of that value, the texts of their strings,
/// and where their long containers end. Reading it needs no checks.
///
/// Where a reader drops entries with repeated keys, reads values over earlier ones, or repairs ids
/// of strings, the bytes are a copy without all that. Else they are those given, which must outlive
/// this object.
class Contents {
public:
    /// Verifies the bytes as a value of the root. If the verdict is unsafe, there is no value,
    /// and only `root` and `verdict` may be called. Throws what `verify` throws.
    Contents(Root const& root, std::string_view bytes, VerifyOptions const& options = {});
    Contents(Contents&&) noexcept;
    Contents& operator=(Contents&&) noexcept;
    ~Contents();

    Root const&    root() const noexcept { return *root_; }
    Verdict const& verdict() const noexcept { return verdict_; }

    std::string_view bytes() const noexcept { return bytes_; }

    /// The decimal point of the process that wrote the bytes.
    std::string const& point() const noexcept { return point_; }

    /// How many strings are defined. Their ids are 1, 2 and so on.
    std::size_t strings() const noexcept { return texts_.size(); }

    /// The text of a string to which a back-reference with this id refers.
    std::string_view text_of(std::int32_t id) const noexcept;

    LongContainers const& long_containers() const noexcept { return long_containers_; }

private:
    struct Kept;

    template <class Takes>
    Verdict walk(VerifyOptions const& options, Takes const& takes);
    void    keep(VerifyOptions const& options);

    Root const*                root_;
    std::string_view           bytes_;
    std::string                point_;
    std::unique_ptr<Kept>      kept_;   // the copy, if there is one
    std::vector<std::uint64_t> texts_;  // the offsets of the length words, by id
    LongContainers             long_containers_;
    Verdict                    verdict_;
};

/// The same as `digest` of the bytes, without another walk for their texts. Requires a verdict
/// without `reason_against_encoding`.
std::string digest(Contents const& contents, WalkOptions const& options);

}  // namespace sml::inspect
