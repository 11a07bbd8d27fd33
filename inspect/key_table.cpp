#include "inspect/key_table.hpp"

namespace sml::inspect {

void KeyTable::open(std::uint64_t count) {
    if (open_ == tables_.size()) tables_.emplace_back();
    tables_[open_++].assign(slots_for(count), Slot{0, Step::nowhere});
}

void KeyTable::close() {
    constexpr std::size_t most_kept = 4096;
    std::vector<Slot>&    table = tables_[--open_];
    if (table.capacity() > most_kept) table = {};
}

bool KeyTable::add(Walk const& walk, Type const& type, std::uint64_t key_offset,
                   std::uint64_t hash) {
    std::vector<Slot>& table = tables_[open_ - 1];
    std::size_t const  slots = table.size();
    for (std::size_t i = first_slot(hash, slots);; i = i + 1 == slots ? 0 : i + 1) {
        if (table[i].key_offset == Step::nowhere) {
            table[i] = {hash, key_offset};
            return true;
        }
        if (table[i].hash == hash && walk.same_key(type, table[i].key_offset, key_offset))
            return false;
    }
}

}  // namespace sml::inspect
