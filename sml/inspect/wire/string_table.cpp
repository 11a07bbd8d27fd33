#include <sml/inspect/wire/string_table.hpp>

#include <bit>
#include <utility>

namespace sml::inspect {

StringTable::Added StringTable::add(std::int32_t id, std::uint64_t length_offset) {
    auto const entry = static_cast<std::uint32_t>(entries_.size());
    entries_.push_back({length_offset, hash_of(text_at(length_offset))});
    bool const in_prefix =
        id == prefix_ + 1 && static_cast<std::uint32_t>(prefix_) == entry && others_.empty();
    if (in_prefix) ++prefix_;
    bool const id_is_new = in_prefix || add_other(id, entry);
    ++count_;
    bool const text_is_new = index_text(entry);
    return {static_cast<std::uint32_t>(id) == count_, text_is_new, in_prefix, id_is_new};
}

bool StringTable::add_other(std::int32_t id, std::uint32_t entry) {
    bool const is_referable = StringWord::is_referable(id);
    bool const is_new =
        is_referable ? !has_id(id) : !std::exchange(id == 0 ? has_0_ : has_least_, true);
    if (model_ != nullptr) model_->use_id(id, is_new);
    if (is_new && is_referable) others_.add(id, entry);
    return is_new;
}

bool StringTable::refer_other(std::int32_t id) {
    bool const is_new = !has_id(id);
    if (model_ != nullptr) model_->use_id(id, is_new);
    if (is_new) others_.add(id, unknown);
    return !is_new;
}

bool StringTable::has_id(std::int32_t id) const { return id <= prefix_ || others_.find(id); }

bool StringTable::index_text(std::uint32_t entry) {
    if (distinct_ * 4 >= index_.size() * 3) grow_index();
    std::string_view const text = text_at(entries_[entry].length_offset);
    std::size_t const      mask = index_.size() - 1;
    std::uint64_t const    hash = entries_[entry].hash;
    Slot const             own = slot_for(hash, entry);
    for (std::size_t i = own >> shift_;; i = (i + 1) & mask) {
        Slot const slot = index_[i];
        if (slot == 0) {
            index_[i] = own;
            ++distinct_;
            return true;
        }
        if ((slot ^ own) >> entry_bits != 0) continue;
        Entry const& other = entries_[static_cast<std::uint32_t>(slot) - 1];
        if (other.hash != hash) continue;
        comparisons_ += comparisons_for(text.size());
        if (text_at(other.length_offset) == text) {
            repeated_.push_back(entry);
            repetitions_.emplace(entries_[entry].length_offset, other.length_offset);
            entries_[entry].length_offset = other.length_offset;
            return false;
        }
    }
}

void StringTable::grow_index() {
    constexpr std::size_t        least_slots = 64;
    std::pmr::vector<Slot>       larger(index_.empty() ? least_slots : 2 * index_.size(), 0,
                                  index_.get_allocator());
    std::pmr::vector<Slot> const old = std::exchange(index_, std::move(larger));
    std::size_t const            mask = index_.size() - 1;
    shift_ = 64 - std::countr_zero(index_.size());
    for (Slot const slot : old) {
        if (slot == 0) continue;
        std::size_t i = slot >> shift_;
        while (index_[i] != 0) i = (i + 1) & mask;
        index_[i] = slot;
    }
}

std::uint64_t StringTable::readers_comparisons() const {
    Hashes added(entries_.get_allocator());
    added.reserve(distinct_);
    auto repeated = repeated_.begin();
    for (std::uint32_t entry = 0; entry < entries_.size(); ++entry) {
        if (repeated != repeated_.end() && *repeated == entry)
            ++repeated;
        else
            added.push_back(entries_[entry].hash);
    }
    // When a reader's object is destroyed, each text is looked up once more.
    Compared const all = compared_in_table(added);
    return all.comparisons + all.pairs + repeated_.size() * all.longest;
}

}  // namespace sml::inspect
