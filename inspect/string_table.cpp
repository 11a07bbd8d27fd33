#include "inspect/string_table.hpp"

#include <cstring>
#include <random>
#include <utility>

namespace sml::inspect {

std::uint64_t const hash_seed = [] {
    std::random_device device;
    return (std::uint64_t{device()} << 32) ^ device();
}();

namespace {

std::uint64_t word_at(char const* bytes, std::size_t size) {
    std::uint64_t word = 0;
    if (size > 0) std::memcpy(&word, bytes, size);
    return word;
}

}  // namespace

std::uint64_t seeded_hash(std::string_view text) {
    std::uint64_t state = text.size();
    for (; text.size() > 8; text.remove_prefix(8))
        state = seeded_hash(word_at(text.data(), 8), state);
    return seeded_hash(word_at(text.data(), text.size()), state);
}

StringTable::Told StringTable::tell(std::int32_t word, std::uint64_t length_offset) {
    auto const          id = static_cast<std::int32_t>(0u - static_cast<std::uint32_t>(word));
    auto const          entry = static_cast<std::uint32_t>(entries_.size());
    std::uint64_t const hash = seeded_hash(text_at(length_offset));
    entries_.push_back({length_offset, hash});
    if (id == prefix_ + 1 && static_cast<std::uint32_t>(prefix_) == entry)
        ++prefix_;
    else if (!knows(id))
        others_.emplace(id, entry);
    ++told_;
    return {static_cast<std::uint32_t>(id) == told_, index_text(entry), hash};
}

bool StringTable::refer_other(std::int32_t id) {
    if (knows(id)) return true;
    others_.emplace(id, static_cast<std::uint32_t>(entries_.size()));
    entries_.push_back({nowhere, seeded_hash(std::string_view())});
    return false;
}

bool StringTable::knows(std::int32_t id) const {
    return (id >= 1 && id <= prefix_) || others_.contains(id);
}

bool StringTable::index_text(std::uint32_t entry) {
    if (distinct_ * 2 >= index_.size()) grow_index();
    std::string_view const text = text_at(entries_[entry].length_offset);
    std::size_t const      mask = index_.size() - 1;
    std::uint64_t const    hash = entries_[entry].hash;
    for (std::size_t slot = hash & mask;; slot = (slot + 1) & mask) {
        if (index_[slot] == 0) {
            index_[slot] = entry + 1;
            ++distinct_;
            return true;
        }
        Entry const& other = entries_[index_[slot] - 1];
        if (other.hash == hash && text_at(other.length_offset) == text) {
            repetitions_.emplace(entries_[entry].length_offset, other.length_offset);
            entries_[entry].length_offset = other.length_offset;
            return false;
        }
    }
}

void StringTable::grow_index() {
    std::vector<std::uint32_t> const old =
        std::exchange(index_, std::vector<std::uint32_t>(index_.empty() ? 64 : index_.size() * 2));
    std::size_t const mask = index_.size() - 1;
    for (std::uint32_t const entry : old) {
        if (entry == 0) continue;
        std::size_t slot = entries_[entry - 1].hash & mask;
        while (index_[slot] != 0) slot = (slot + 1) & mask;
        index_[slot] = entry;
    }
}

}  // namespace sml::inspect
