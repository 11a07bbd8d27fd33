#pragma once

#include "json_input.hpp"

#include <map>
#include <string_view>

namespace bradep::sarif {

namespace json = boost::json;

/// Finds elements of a list by a member that is a text. Each element is read once, and none after
/// the one that is found, so errors in later elements are not reported yet. The list, which may be
/// null, must outlive this object.
class ElementsByText {
public:
    ElementsByText(json::array const* list, std::string_view member_name)
        : list_(list), member_name_(member_name) {}

    std::string_view member_name() const { return member_name_; }

    /// The first element with this text, or null. Throws Misfit.
    json::value const* find(std::string_view wanted);

private:
    json::array const*                             list_;
    std::string_view                               member_name_;
    std::size_t                                    looked_at_ = 0;
    std::map<std::string_view, json::value const*> known_;
};

}  // namespace bradep::sarif
