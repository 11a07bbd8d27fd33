#include "sarif/run_lists.hpp"

namespace bradep::sarif {

using namespace json_input;

RunLists::RunLists(json::value const& run)
    : driver_(found(found(&run, "tool"), "driver")),
      artifacts_(found_list(&run, "artifacts")),
      extensions_(found_list(found(&run, "tool"), "extensions")),
      taxonomies_(found_list(&run, "taxonomies")),
      shared_{{&schema::logical_location, found_list(&run, "logicalLocations")},
              {&schema::address, found_list(&run, "addresses")},
              {&schema::web_request, found_list(&run, "webRequests")},
              {&schema::web_response, found_list(&run, "webResponses")}} {
    for (auto const* const list : {taxonomies_, extensions_})
        if (list)
            for (auto const& component : *list) add_component(component);
    if (driver_) add_component(*driver_);
}

void RunLists::add_component(json::value const& component) {
    if (auto const guid = found_text(&component, "guid")) by_guid_.emplace(*guid, &component);
    if (auto const name = found_text(&component, "name")) by_name_.emplace(*name, &component);
}

json::value const* RunLists::artifact(json::value const* index) const {
    return indexed(artifacts_, index);
}

json::value const* RunLists::shared(schema::Type const& type, json::value const& object) const {
    auto const list = shared_.find(&type);
    return list == shared_.end() ? nullptr : indexed(list->second, found(&object, "index"));
}

json::value const* RunLists::component(json::value const* reference) const {
    if (reference == nullptr) return driver_;
    if (auto const guid = found_text(reference, "guid"))
        if (auto const known = by_guid_.find(*guid); known != by_guid_.end()) return known->second;
    auto const        name = found_text(reference, "name");
    auto const* const index = found(reference, "index");
    auto const* const taxonomy = indexed(taxonomies_, index);
    auto const* const extension = indexed(extensions_, index);
    bool const        is_extension = name && found_text(extension, "name") == name;
    if (taxonomy && !is_extension) return taxonomy;
    if (extension) return extension;
    auto const known = name ? by_name_.find(*name) : by_name_.end();
    return known == by_name_.end() ? nullptr : known->second;
}

json::value const* RunLists::by_id(json::array const& list, std::string_view id) {
    auto const [known, is_new] = by_id_.try_emplace(&list);
    if (is_new)
        for (auto const& descriptor : list)
            for (auto const* const name : {"id", "guid"})
                if (auto const text = found_text(&descriptor, name))
                    known->second.emplace(*text, &descriptor);
    auto const descriptor = known->second.find(id);
    return descriptor == known->second.end() ? nullptr : descriptor->second;
}

Rule RunLists::referred(json::value const&                      reference,
                        std::initializer_list<std::string_view> lists) {
    auto const* const its_component = component(found(&reference, "toolComponent"));
    for (auto const name : lists)
        if (auto const* const one =
                indexed(found_list(its_component, name), found(&reference, "index")))
            return {one, its_component};
    for (auto const name : lists) {
        auto const* const list = found_list(its_component, name);
        if (list == nullptr) continue;
        for (auto const* const given : {"guid", "id"})
            if (auto const text = found_text(&reference, given))
                if (auto const* const one = by_id(*list, *text)) return {one, its_component};
    }
    return {nullptr, its_component};
}

void RunLists::use(json::value const* descriptor) {
    std::vector<json::value const*> next = {descriptor};
    while (!next.empty()) {
        auto const* const one = next.back();
        next.pop_back();
        if (one == nullptr || !used_.insert(one).second) continue;
        auto const* const relationships = found_list(one, "relationships");
        if (relationships == nullptr) continue;
        for (auto const& relationship : *relationships)
            if (auto const* const target = found(&relationship, "target"))
                next.push_back(referred(*target, {"taxa"}).descriptor);
    }
}

json::value const* RunLists::message_string(std::string_view id, Rule const& rule) const {
    if (auto const* const own = found(found(rule.descriptor, "messageStrings"), id)) return own;
    for (auto const* const component : {rule.component, driver_})
        if (auto const* const common = found(found(component, "globalMessageStrings"), id))
            return common;
    return nullptr;
}

}  // namespace bradep::sarif
