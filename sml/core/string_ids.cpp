#include <sml/core/string_ids.hpp>

namespace sml::core {

std::int32_t IdsByString::add(Strings_T const& handle, Slot& slot) {
    pinned_.push_back(handle);
    slot = {key_of(handle), static_cast<std::int32_t>(pinned_.size())};
    if (pinned_.size() > mask_ / 2) grow();
    return 0;
}

void IdsByString::grow() {
    std::size_t const size = 2 * (mask_ + 1);
    auto              slots = std::make_unique<Slot[]>(size);
    mask_ = size - 1;
    --shift_;
    slots_ = slots.get();
    for (std::size_t id = 1; id <= pinned_.size(); ++id) {
        void const* const key = key_of(pinned_[id - 1]);
        std::size_t       i = slot_of(key);
        while (slots_[i].id != 0) i = (i + 1) & mask_;
        slots_[i] = {key, static_cast<std::int32_t>(id)};
    }
    grown_slots_ = std::move(slots);
}

}  // namespace sml::core
