#pragma once
// Texts with numbers, each once.

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>

namespace bradep::report {

/// Texts numbered from 0 in the order of their addition. Number 0 is the empty text.
class Dictionary {
public:
    Dictionary() { number_of({}); }

    std::uint32_t number_of(std::string_view text) {
        if (!texts_.empty() && text == texts_[last_]) return last_;
        auto const known = numbers_.find(text);
        return last_ = known != numbers_.end() ? known->second : add(text);
    }

    std::deque<std::string> const& texts() const { return texts_; }

private:
    std::uint32_t add(std::string_view text) {
        auto const number = static_cast<std::uint32_t>(texts_.size());
        numbers_.emplace(texts_.emplace_back(text), number);
        return number;
    }

    std::deque<std::string>                             texts_;  // never move
    std::unordered_map<std::string_view, std::uint32_t> numbers_;
    std::uint32_t                                       last_ = 0;  // asked for
};

}  // namespace bradep::report
