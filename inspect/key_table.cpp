#include "inspect/key_table.hpp"

namespace sml::inspect {

void KeyTable::open(std::uint64_t count) {
    if (open_ == tables_.size()) tables_.emplace_back();
    tables_[open_++].assign(slots_for(count), Slot{0});
}

void KeyTable::close() { close_slots(tables_[--open_]); }

bool KeyTable::add(Walk const& walk, Type const& type, std::uint64_t key_offset,
                   std::uint64_t hash) {
    auto&             table = tables_[open_ - 1];
    std::size_t const slots = table.size();
    Slot const        key = hash << offset_bits | key_offset;
    for (std::size_t i = first_slot(hash, slots);; i = i + 1 == slots ? 0 : i + 1) {
        Slot const other = table[i];
        if (other == 0) {
            table[i] = key;
            return true;
        }
        if ((other ^ key) >> offset_bits != 0) continue;
        auto const compared =
            walk.compare_keys(type, other & ((Slot{1} << offset_bits) - 1), key_offset);
        if (!compared.are_equal) {
            comparisons_ += comparisons_for(compared.bytes);
            continue;
        }
        // From now on the later one is compared with: no long number is read again and again.
        table[i] = key;
        return false;
    }
}

}  // namespace sml::inspect
