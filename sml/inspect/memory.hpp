#pragma once
// The memory that a call takes for work of its own: counted, and refused beyond a budget.

#include <sml/inspect/finding.hpp>
#include <sml/inspect/reader/heap_chunk.hpp>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory_resource>
#include <new>

namespace sml::inspect {

/// Gives memory up to an amount at a time, and throws beyond it. For one call, on one thread.
class Budget final : public std::pmr::memory_resource {
public:
    explicit Budget(std::uint64_t bytes) noexcept : left_(bytes) {}
    Budget(Budget const&) = delete;
    Budget& operator=(Budget const&) = delete;

    /// Counts memory that other code takes, for as long as this lives. Throws `BudgetExceeded`, and
    /// `std::bad_alloc` where the process could not get so much now: the number libraries end it
    /// then.
    class Hold {
    public:
        Hold(Budget& budget, std::uint64_t bytes) : budget_(budget), bytes_(bytes) {
            budget_.take(bytes_);
            constexpr std::uint64_t least_tried = std::uint64_t{1} << 16;
            if (bytes_ < least_tried) return;
            void* volatile const tried = std::malloc(bytes_);  // not to be left out
            bool const does = tried != nullptr;
            std::free(tried);
            if (does) return;
            budget_.give_back(bytes_);
            throw std::bad_alloc();
        }
        Hold(Hold const&) = delete;
        Hold& operator=(Hold const&) = delete;
        ~Hold() { budget_.give_back(bytes_); }

    private:
        Budget&       budget_;
        std::uint64_t bytes_;
    };

private:
    // With what the allocator adds.
    void take(std::uint64_t bytes) {
        std::uint64_t const chunk = chunk_of(bytes);
        if (chunk > left_) throw BudgetExceeded();
        left_ -= chunk;
    }
    void give_back(std::uint64_t bytes) noexcept { left_ += chunk_of(bytes); }

    static std::pmr::memory_resource& heap() { return *std::pmr::new_delete_resource(); }

    // Not over-aligned where it need not be: a program that replaces `operator new` replaces that.
    static bool is_plain(std::size_t alignment) {
        return alignment <= __STDCPP_DEFAULT_NEW_ALIGNMENT__;
    }

    void* do_allocate(std::size_t bytes, std::size_t alignment) override {
        take(bytes);
        try {
            return is_plain(alignment) ? ::operator new(bytes) : heap().allocate(bytes, alignment);
        } catch (...) {
            give_back(bytes);
            throw;
        }
    }

    void do_deallocate(void* memory, std::size_t bytes, std::size_t alignment) override {
        if (is_plain(alignment))
            ::operator delete(memory);
        else
            heap().deallocate(memory, bytes, alignment);
        give_back(bytes);
    }

    bool do_is_equal(std::pmr::memory_resource const& other) const noexcept override {
        return this == &other;
    }

    std::uint64_t left_;
};

}  // namespace sml::inspect
