#include "diff/side_options.hpp"

#include "errors.hpp"

#include <filesystem>
#include <system_error>

namespace bradep {

void declare_map(CLI::App& app, std::vector<std::string>& maps) {
    app.add_option("--map", maps,
                   "Paths that start with OLD on the old side start with NEW on the new side")
        ->type_name("OLD=NEW")
        ->allow_extra_args(false);
}

std::vector<sml::results::MovedRoot> roots_of(std::vector<std::string> const& maps) {
    std::vector<sml::results::MovedRoot> roots;
    for (std::string const& map : maps) {
        auto const sign = map.find('=');
        if (sign == std::string::npos)
            throw CLI::ValidationError("--map " + map + ": there is no = between OLD and NEW");
        roots.push_back(sml::results::moved_root_of(map.substr(0, sign), map.substr(sign + 1)));
    }
    return roots;
}

void refuse_missing_directory(std::optional<std::string> const& name) {
    std::error_code error;
    if (name && !std::filesystem::is_directory(*name, error))
        throw IoFailure("cannot read " + *name + ": no such directory");
}

}  // namespace bradep
