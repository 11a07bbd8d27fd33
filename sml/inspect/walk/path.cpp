#include <sml/inspect/walk/path.hpp>

namespace sml::inspect {

namespace {

void append_name(std::string& path, std::string_view name) {
    if (!path.empty()) path += '.';
    path += name;
}

}  // namespace

void append_step(std::string& path, Type const& owner, std::uint64_t part, std::string_view key) {
    std::string const index = std::to_string(part);
    switch (owner.kind) {
        case Kind::list:
        case Kind::set:
        case Kind::flags: path += '[' + index + ']'; return;
        case Kind::map:
            path += key.empty() ? "[#" + index + "].key" : '[' + std::string(key) + ']';
            return;
        case Kind::variant: append_name(path, owner.arms[part].name); return;
        case Kind::tuple: append_name(path, index); return;
        default: append_name(path, owner.parts[part].name); return;
    }
}

}  // namespace sml::inspect
