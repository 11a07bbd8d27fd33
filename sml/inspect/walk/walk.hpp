#pragma once
// Where a walk stands in bytes: what all walks share, whatever they tell to whom.

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

/// One step of the path to the value at hand: the value that it is in and which of its parts. Lives
/// on the stack for as long as the walk is in there.
struct Step {
    Type const*     type;
    Step const*     up;                    ///< the step before it
    FlatPart const* flat = nullptr;        ///< the flat part, while those are walked
    std::uint64_t   part = nowhere;        ///< index of a field, part, arm, flag or element
    std::uint64_t   key_offset = nowhere;  ///< of the entry's key, once it has been walked

    static constexpr std::uint64_t nowhere = ~std::uint64_t{0};
};

/// The bytes, the place in them, the strings met and what a reader is estimated to need. Takes
/// nothing beyond the bytes.
class Walk {
public:
    /// The bytes and the budget live as long as this.
    Walk(std::string_view bytes, WalkOptions const& options, Budget& budget);
    Walk(Walk const&) = delete;
    Walk& operator=(Walk const&) = delete;

    std::uint64_t offset() const noexcept { return static_cast<std::uint64_t>(at_ - start_); }
    std::uint64_t left() const noexcept { return static_cast<std::uint64_t>(end_ - at_); }

    /// The next word; `left()` holds it.
    template <class Word>
    Word take_word() noexcept {
        at_ += sizeof(Word);
        return word_at<Word>(at_ - sizeof(Word));
    }

    void skip(std::size_t size) noexcept { at_ += size; }

    /// The bytes not taken yet; who has taken more of them without the walk says how far.
    char const* at() const noexcept { return at_; }
    void        seek(char const* at) noexcept { at_ = at; }

    /// The next bytes; `left()` holds them.
    std::string_view take(std::size_t size) noexcept {
        std::string_view const taken(at_, size);
        at_ += size;
        return taken;
    }

    /// The path from the root to the value at hand, as in
    /// `checks[("src/a.c",3)].category.OVFL.ovfl_data`; empty at the root.
    std::string path() const;

    /// Adds a step to a path.
    void append_step(std::string& path, Step const& step) const;

    /// A step into a value, which is to be left again.
    Step enter(Type const& type) const noexcept { return {&type, top_}; }
    void set_step(Step const* step) noexcept { top_ = step; }

    /// How many steps the walk is in.
    std::size_t depth() const noexcept {
        std::size_t depth = 0;
        for (Step const* step = top_; step != nullptr; step = step->up) ++depth;
        return depth;
    }
    /// The step taken last; there is one.
    Step const& step() const noexcept { return *top_; }

    /// The decimal point of the process that wrote the bytes.
    std::string_view point() const noexcept { return point_; }

    Budget&       budget;
    StringTable   strings;
    Keys const    keys;  ///< of what has been walked
    ReaderHeap    heap;
    std::uint64_t elements = 0;  ///< of all containers so far
    std::uint32_t nesting = 0;   ///< variants and containers that the walk is in
    Limits const  limits;

    /// Told the offset now and then, if there is one: for another thread that shows progress.
    std::atomic<std::uint64_t>* const progress;

private:
    std::string point_;
    char const* start_;
    char const* end_;
    char const* at_;
    Step const* top_ = nullptr;
};

}  // namespace sml::inspect
