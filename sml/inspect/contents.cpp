#include <sml/inspect/contents.hpp>

#include <sml/inspect/memory.hpp>
#include <sml/inspect/read_over.hpp>
#include <sml/inspect/verified_walk.hpp>
#include <sml/inspect/wire/walked_bytes.hpp>

#include <limits>
#include <utility>

namespace sml::inspect {

struct Contents::Kept {
    explicit Kept(std::uint64_t own_memory) : budget(own_memory) {}

    Budget           budget;
    std::pmr::string bytes{&budget};
};

Contents::Contents(Root const& root, std::string_view bytes, VerifyOptions const& options)
    : root_(&root), bytes_(bytes), point_(options.decimal_point) {
    verdict_ = walk(options, [](Verdict const& verdict) {
        return verdict.answer != Answer::unsafe && !verdict.reason_against_encoding;
    });
    if (verdict_.answer == Answer::odd && verdict_.reason_against_encoding) keep(options);
}
Contents::Contents(Contents&&) noexcept = default;
Contents& Contents::operator=(Contents&&) noexcept = default;
Contents::~Contents() = default;

// Takes the strings and long containers if `takes` says so.
template <class Takes>
Verdict Contents::walk(VerifyOptions const& options, Takes const& takes) {
    Budget         budget(options.limits.own_memory);
    Walk           walk(bytes_, options.walk(), budget);
    LongContainers long_containers;
    Verdict        verdict = verified_walk(*root_, walk, options, &long_containers);
    if (!takes(verdict)) return verdict;
    long_containers.sort();
    long_containers_ = std::move(long_containers);
    texts_.reserve(walk.strings.count());
    for (std::uint32_t id = 1; id <= walk.strings.count(); ++id)
        texts_.push_back(walk.strings.place_of(static_cast<std::int32_t>(id)));
    return verdict;
}

// The copy is within the limits that the bytes were in, except that an empty text is defined where
// an id without definition was referred to. So only the depth is limited.
void Contents::keep(VerifyOptions const& options) {
    kept_ = std::make_unique<Kept>(options.limits.own_memory);
    kept_->bytes = bytes_kept(*root_, bytes_, options, kept_->budget);
    bytes_ = kept_->bytes;
    constexpr auto most = std::numeric_limits<std::uint64_t>::max();
    VerifyOptions  unlimited = options;
    unlimited.listener = nullptr;
    unlimited.listed = 0;
    unlimited.limits = {.depth = options.limits.depth,
                        .elements = most,
                        .text_bytes = most,
                        .memory = most,
                        .work = most,
                        .own_memory = options.limits.own_memory};
    walk(unlimited, [](Verdict const&) { return true; });
}

std::string_view Contents::text_of(std::int32_t id) const noexcept {
    return WalkedBytes(bytes_, texts_[static_cast<std::size_t>(id) - 1]).take_block();
}

}  // namespace sml::inspect
