#include "sarif/elements_by_text.hpp"

namespace bradep::sarif {

json::value const* ElementsByText::find(std::string_view wanted) {
    auto const known = known_.find(wanted);
    if (known != known_.end()) return known->second;
    while (list_ != nullptr && looked_at_ < list_->size()) {
        auto const& element = (*list_)[looked_at_];
        auto const  text = json_input::view(element, member_name_);
        ++looked_at_;  // not before `view`: if it throws, the next search throws again
        if (!text) continue;
        known_.try_emplace(*text, &element);
        if (*text == wanted) return &element;
    }
    return nullptr;
}

}  // namespace bradep::sarif
