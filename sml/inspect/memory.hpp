#pragma once
// The memory that a call allocates for its own work: counted, and limited by a budget.

#include <sml/inspect/finding.hpp>
#include <sml/inspect/reader/heap_chunk.hpp>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory_resource>
#include <new>

namespace sml::inspect {

/// A memory resource that throws `BudgetExceeded` when more than `bytes` would be allocated at one
/// time, counted with what the allocator adds. For one call, on one thread.
class Budget final : public std::pmr::memory_resource {
public:
    explicit Budget(std::uint64_t bytes) noexcept : left_(bytes) {}
    Budget(Budget const&) = delete;
    Budget& operator=(Budget const&) = delete;

    /// Counts `bytes` that other code allocates, until it is destroyed. Throws `BudgetExceeded`.
    /// For 64 KiB and more it throws `std::bad_alloc` if the process can't allocate so much now:
    /// the number libraries would end the process.
    class Hold {
    public:
        Hold(Budget& budget, std::uint64_t bytes) : budget_(budget), bytes_(bytes) {
            budget_.take(bytes_);
            constexpr std::uint64_t least_tried = std::uint64_t{1} << 16;
            if (bytes_ < least_tried) return;
            void* volatile const tried = std::malloc(bytes_);  // volatile: not to be optimised away
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
    // Both count what the allocator adds to a block.
    void take(std::uint64_t bytes) {
        std::uint64_t const chunk = chunk_of(bytes);
        if (chunk > left_) throw BudgetExceeded();
        left_ -= chunk;
    }
    void give_back(std::uint64_t bytes) noexcept { left_ += chunk_of(bytes); }

    static std::pmr::memory_resource& heap() { return *std::pmr::new_delete_resource(); }

    // Plain `operator new` is called where its alignment is enough: a program may have replaced it.
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
