#pragma once
// The state of a walk: the position in the bytes, the path to it, the strings, and an estimate of
// what a reader needs.

#include <sml/inspect/finding.hpp>
#include <sml/inspect/keys/keys.hpp>
#include <sml/inspect/memory.hpp>
#include <sml/inspect/reader/reader_heap.hpp>
#include <sml/inspect/type.hpp>
#include <sml/inspect/wire/form.hpp>
#include <sml/inspect/wire/string_table.hpp>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace sml::inspect {

/// One step of the path to the present value: the type of a value around it, and which part of that
/// value is walked. It lives on the stack while the walk is inside that value.
struct Step {
    Type const*     type;
    Step const*     up;                    ///< the step around it; null for the root
    FlatPart const* flat = nullptr;        ///< the present one, while flat parts are walked
    std::uint64_t   part = nowhere;        ///< index of a field, part, arm, flag or element
    std::uint64_t   key_offset = nowhere;  ///< of the entry's key, while its value is walked

    static constexpr std::uint64_t nowhere = ~std::uint64_t{0};
};

/// The state of one walk. Functions that take bytes do not check how many are left: the caller
/// does.
class Walk {
public:
    /// `bytes` and `budget` must outlive this object. A limit of depth above `Limits::depth_cap` is
    /// replaced by that.
    Walk(std::string_view bytes, WalkOptions const& options, Budget& budget);
    Walk(Walk const&) = delete;
    Walk& operator=(Walk const&) = delete;

    std::uint64_t offset() const noexcept { return static_cast<std::uint64_t>(at_ - start_); }
    std::uint64_t left() const noexcept { return static_cast<std::uint64_t>(end_ - at_); }

    /// Takes the next word. Requires `left() >= sizeof(Word)`.
    template <class Word>
    Word take_word() noexcept {
        at_ += sizeof(Word);
        return word_at<Word>(at_ - sizeof(Word));
    }

    void skip(std::size_t size) noexcept { at_ += size; }

    /// The position. Code that takes bytes without this object starts here, and calls `seek` with
    /// the position after them.
    char const* at() const noexcept { return at_; }
    void        seek(char const* at) noexcept { at_ = at; }

    /// Takes the next `size` bytes. Requires `left() >= size`.
    std::string_view take(std::size_t size) noexcept {
        std::string_view const taken(at_, size);
        at_ += size;
        return taken;
    }

    /// The path from the root to the present value, as in
    /// `checks[("src/a.c",3)].category.OVFL.ovfl_data`; empty at the root.
    std::string path() const;

    /// Appends a step to a path.
    void append_step(std::string& path, Step const& step) const;

    /// Returns a new step, into a value of this type. The caller passes it to `set_step`, and when
    /// it leaves the value, passes `up` of the step.
    Step enter(Type const& type) const noexcept { return {&type, top_}; }
    void set_step(Step const* step) noexcept { top_ = step; }

    /// The number of steps of the path.
    std::size_t depth() const noexcept {
        std::size_t depth = 0;
        for (Step const* step = top_; step != nullptr; step = step->up) ++depth;
        return depth;
    }
    /// The innermost step. Requires `depth() > 0`.
    Step const& step() const noexcept { return *top_; }

    /// The decimal point of the process that wrote the bytes.
    std::string_view point() const noexcept { return point_; }

    Budget&       budget;
    StringTable   strings;
    Keys const    keys;  ///< reads keys again that have been walked
    ReaderHeap    heap;
    std::uint64_t elements = 0;  ///< elements and entries of all containers so far
    std::uint32_t nesting = 0;   ///< number of open variants and containers
    Limits const  limits;

    /// If not null, the offset is stored here from time to time, for another thread that shows
    /// progress.
    std::atomic<std::uint64_t>* const progress;

private:
    std::string point_;
    char const* start_;
    char const* end_;
    char const* at_;
    Step const* top_ = nullptr;
};

}  // namespace sml::inspect
