#include <sml/inspect/keys/key_table.hpp>

#include <algorithm>

namespace sml::inspect {

void KeyTable::open(std::uint64_t count) {
    if (open_ == tables_.size()) tables_.emplace_back();
    tables_[open_++].count = count;
}

void KeyTable::close() {
    Table& table = tables_[--open_];
    close_slots(table.defined);
    close_slots(table.slots);
}

bool KeyTable::add(Keys const& keys, Type const& type, std::uint64_t key_offset,
                   std::uint64_t hash) {
    Table& table = tables_[open_ - 1];
    if (type.kind == Kind::string) {
        auto const place = keys.text_place(key_offset);
        if (place && *place > key_offset) {
            if (table.defined.empty()) table.defined.reserve(table.count);
            table.defined.push_back(*place);
            return true;
        }
        if (place && std::ranges::binary_search(table.defined, *place)) return false;
    }
    if (table.slots.empty()) table.slots.assign(slots_for(table.count), Slot{0});
    std::size_t const slots = table.slots.size();
    Slot const        key = hash << offset_bits | key_offset;
    for (std::size_t i = first_slot(hash, slots);; i = i + 1 == slots ? 0 : i + 1) {
        Slot const other = table.slots[i];
        if (other == 0) {
            table.slots[i] = key;
            return true;
        }
        if ((other ^ key) >> offset_bits != 0) continue;
        auto const compared =
            keys.compare(type, other & ((Slot{1} << offset_bits) - 1), key_offset);
        if (!compared.are_equal) {
            comparisons_ += comparisons_for(compared.bytes);
            continue;
        }
        // The later key takes the slot: else an earlier long number would be parsed again for each
        // equal key.
        table.slots[i] = key;
        return false;
    }
}

}  // namespace sml::inspect
