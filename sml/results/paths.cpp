#include <sml/results/paths.hpp>

#include <algorithm>
#include <cctype>
#include <compare>
#include <cstddef>
#include <iterator>
#include <map>
#include <tuple>
#include <unordered_map>

namespace sml::results {

namespace {

using Paths = std::vector<std::string>;

// What names of files have in place of the root.
std::string const& least_of(MovedRoot const& root) { return std::min(root.before, root.after); }

int digit_of(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

std::string decoded(std::string_view uri) {
    std::string text;
    text.reserve(uri.size());
    for (std::size_t i = 0; i < uri.size(); ++i) {
        bool const is_code = uri[i] == '%' && i + 2 < uri.size() && digit_of(uri[i + 1]) >= 0 &&
                             digit_of(uri[i + 2]) >= 0;
        if (!is_code) {
            text += uri[i];
            continue;
        }
        text += static_cast<char>(digit_of(uri[i + 1]) * 16 + digit_of(uri[i + 2]));
        i += 2;
    }
    return text;
}

bool is_letter(char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0; }

// "file:///a" and "file:/a" become "/a", "file://host/a" becomes "//host/a".
std::string_view without_scheme(std::string_view uri) {
    constexpr std::string_view scheme = "file:";
    if (uri.size() < scheme.size()) return uri;
    for (std::size_t i = 0; i < scheme.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(uri[i])) != scheme[i]) return uri;
    uri.remove_prefix(scheme.size());
    if (uri.starts_with("///")) uri.remove_prefix(2);
    if (uri.starts_with("//localhost/")) uri.remove_prefix(11);
    return uri;
}

std::string resolved(std::string_view path) {
    std::string const             start = path.starts_with('/') ? "/" : "";
    std::vector<std::string_view> parts;
    while (!path.empty()) {
        auto const slash = std::min(path.find('/'), path.size());
        auto const part = path.substr(0, slash);
        path.remove_prefix(std::min(slash + 1, path.size()));
        if (part.empty() || part == ".") continue;
        if (part == ".." && !parts.empty() && parts.back() != "..")
            parts.pop_back();
        else
            parts.push_back(part);
    }
    std::string text = start;
    for (auto const part : parts) {
        if (text.size() > start.size()) text += '/';
        text += part;
    }
    return text;
}

// The length of the longest end that both paths have and that starts behind a slash of each.
std::size_t common_end(std::string_view a, std::string_view b) {
    std::size_t const most = std::min(a.size(), b.size());
    std::size_t       length = 0;
    std::size_t       best = 0;
    auto const        starts_part = [](std::string_view path, std::size_t end) {
        return path.size() == end || path[path.size() - end - 1] == '/';
    };
    while (length < most && a[a.size() - length - 1] == b[b.size() - length - 1]) {
        ++length;
        if (starts_part(a, length) && starts_part(b, length)) best = length;
    }
    return best;
}

Paths difference(Paths const& a, Paths const& b) {
    Paths only;
    std::ranges::set_difference(a, b, std::back_inserter(only));
    return only;
}

/// Counts for which roots the paths of one side speak.
class Votes {
public:
    using Counts = std::map<std::pair<std::string, std::string>, std::size_t>;

    Votes(Paths const& others) {
        for (std::string const& path : others) by_name_[name_in(path)].push_back(&path);
    }

    // A path speaks for the root of the path that it has the longest end in common with, if there
    // is only one such.
    void add(std::string const& path, bool is_old, Counts& counts) const {
        auto const found = by_name_.find(name_in(path));
        if (found == by_name_.end() || found->second.size() > most_of_a_name) return;
        std::string const* best = nullptr;
        std::size_t        longest = 0;
        bool               is_only = false;
        for (auto const* const other : found->second) {
            auto const length = common_end(path, *other);
            if (length < longest) continue;
            is_only = length > longest;
            longest = length;
            best = other;
        }
        if (!is_only) return;
        auto own = path.substr(0, path.size() - longest);
        auto of_other = best->substr(0, best->size() - longest);
        if (!is_old) own.swap(of_other);
        ++counts[{std::move(own), std::move(of_other)}];
    }

private:
    static constexpr std::size_t most_of_a_name = 1000;

    std::unordered_map<std::string_view, std::vector<std::string const*>> by_name_;
};

struct Candidate {
    MovedRoot   root;
    std::size_t votes;

    // Does not depend on which side is the old one.
    auto rank() const {
        return std::tuple(~votes, std::min(root.before, root.after),
                          std::max(root.before, root.after));
    }
};

std::vector<Candidate> candidates(Paths const& olds, Paths const& news) {
    Votes::Counts counts;
    Votes const   of_old(news);
    Votes const   of_new(olds);
    for (std::string const& path : olds) of_old.add(path, true, counts);
    for (std::string const& path : news) of_new.add(path, false, counts);
    std::vector<Candidate> all;
    for (auto const& [root, votes] : counts) all.push_back({{root.first, root.second}, votes});
    std::ranges::sort(all, {}, &Candidate::rank);
    return all;
}

std::ptrdiff_t count_below(Paths const& paths, std::string const& root) {
    return std::ranges::count_if(paths,
                                 [&](std::string const& path) { return path.starts_with(root); });
}

// How many old paths are there on the new side, too, with the new root.
std::ptrdiff_t count_moved(Paths const& olds, Paths const& news, MovedRoot const& root) {
    return std::ranges::count_if(olds, [&](std::string const& path) {
        return path.starts_with(root.before) &&
               std::ranges::binary_search(news, root.after + path.substr(root.before.size()));
    });
}

// A root that has moved has few paths left that both sides have, and most of its files on both.
bool has_moved(MovedRoot const& root, Paths const& olds, Paths const& news, Paths const& both) {
    auto const moved = count_moved(olds, news, root);
    auto const stayed = std::max(count_below(both, root.before), count_below(both, root.after));
    auto const fewest = std::min(count_below(olds, root.before), count_below(news, root.after));
    bool const are_enough = moved >= 2 || (moved == 1 && both.empty());
    return are_enough && moved > stayed && 2 * moved >= fewest;
}

void remove_moved(Paths& olds, Paths& news, MovedRoot const& root) {
    Paths left_olds;
    Paths moved_news;
    for (std::string const& path : olds) {
        auto const other = path.starts_with(root.before)
                               ? root.after + path.substr(root.before.size())
                               : std::string();
        if (!other.empty() && std::ranges::binary_search(news, other))
            moved_news.push_back(other);
        else
            left_olds.push_back(path);
    }
    std::ranges::sort(moved_news);
    news = difference(news, moved_news);
    olds = std::move(left_olds);
}

}  // namespace

std::string_view name_in(std::string_view path) {
    return path.substr(path.rfind('/') + 1);  // npos + 1 is 0
}

std::string path_of(std::string_view uri) {
    std::string path = decoded(without_scheme(uri));
    std::ranges::replace(path, '\\', '/');
    bool const has_slash = path.size() > 2 && path[0] == '/' && path[2] == ':';
    if (has_slash && is_letter(path[1])) path.erase(0, 1);
    if (path.size() > 1 && path[1] == ':' && is_letter(path[0]))
        path[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(path[0])));
    // What is no file has a scheme of its own; its slashes stay.
    return path.find("://") == std::string::npos ? resolved(path) : path;
}

MovedRoot moved_root_of(std::string_view before, std::string_view after) {
    auto const directory = [](std::string_view given) {
        std::string path = path_of(given);
        if (!path.empty() && !path.ends_with('/')) path += '/';
        return path;
    };
    return {directory(before), directory(after)};
}

std::vector<MovedRoot> moved_roots(Paths const& all_olds, Paths const& all_news) {
    constexpr std::size_t  most_roots = 16;
    std::vector<MovedRoot> roots;
    Paths                  both;
    std::ranges::set_intersection(all_olds, all_news, std::back_inserter(both));
    Paths olds = difference(all_olds, both);
    Paths news = difference(all_news, both);
    while (roots.size() < most_roots) {
        constexpr std::size_t most_tried = 20;
        auto                  tried = candidates(olds, news);
        if (tried.size() > most_tried) tried.resize(most_tried);
        auto const found = std::ranges::find_if(
            tried, [&](Candidate const& one) { return has_moved(one.root, olds, news, both); });
        if (found == tried.end()) break;
        remove_moved(olds, news, found->root);
        roots.push_back(found->root);
    }
    return roots;
}

std::vector<MovedRoot> roots_to_move(std::vector<MovedRoot> const& given, Paths const& olds,
                                     Paths const& news) {
    auto const has = [](Paths const& paths, std::string const& part, std::string const& other) {
        return std::ranges::any_of(paths, [&](std::string const& path) {
            bool const is_below_other = other.size() > part.size() && path.starts_with(other);
            return path.starts_with(part) && !is_below_other;
        });
    };
    auto const is_there_alone = [&](Paths const& paths, std::string const& part,
                                    std::string const& other) {
        return has(paths, part, other) && !has(paths, other, part);
    };
    auto roots = given;
    std::erase_if(roots, [&](MovedRoot const& root) {
        return is_there_alone(olds, root.after, root.before) ||
               is_there_alone(news, root.before, root.after);
    });
    return roots;
}

Files::Files(Paths olds, Paths news, std::vector<MovedRoot> const& given) : given_(given) {
    std::ranges::stable_sort(given_, std::ranges::greater(),
                             [](MovedRoot const& root) { return root.before.size(); });
    auto const sort = [](Paths& paths) {
        std::ranges::sort(paths);
        paths.erase(std::unique(paths.begin(), paths.end()), paths.end());
    };
    auto const is_given = [&](std::string const& path, auto part) {
        return std::ranges::any_of(
            given_, [&](MovedRoot const& root) { return path.starts_with(root.*part); });
    };
    std::erase_if(olds, [&](auto const& path) { return is_given(path, &MovedRoot::before); });
    std::erase_if(news, [&](auto const& path) { return is_given(path, &MovedRoot::after); });
    sort(olds);
    sort(news);
    std::ranges::set_intersection(olds, news, std::back_inserter(both_));
    roots_ = moved_roots(olds, news);
}

std::string Files::of_old(std::string const& path) const {
    return name_of(path, &MovedRoot::before);
}
std::string Files::of_new(std::string const& path) const {
    return name_of(path, &MovedRoot::after);
}

std::vector<std::string> Files::olds_named(std::string const& name) const {
    Paths paths = {name};
    for (auto const* const roots : {&given_, &roots_})
        for (MovedRoot const& root : *roots)
            if (auto const& least = least_of(root); name.starts_with(least))
                paths.push_back(root.before + name.substr(least.size()));
    std::erase_if(paths, [&](std::string const& path) { return of_old(path) != name; });
    return paths;
}

std::string Files::moved(std::string const& path) const {
    auto const* const root = root_of(path, &MovedRoot::before);
    return root == nullptr ? path : root->after + path.substr(root->before.size());
}

std::string Files::name_of(std::string const& path, Part part) const {
    auto const* const root = root_of(path, part);
    if (root == nullptr) return path;
    return least_of(*root) + path.substr((root->*part).size());
}

// The root that the path is below; null if none that has moved.
MovedRoot const* Files::root_of(std::string const& path, Part part) const {
    for (MovedRoot const& root : given_)
        if (path.starts_with(root.*part)) return &root;
    if (std::ranges::binary_search(both_, path)) return nullptr;
    MovedRoot const* longest = nullptr;
    for (MovedRoot const& root : roots_)
        if (path.starts_with(root.*part) &&
            (longest == nullptr || (root.*part).size() > (longest->*part).size()))
            longest = &root;
    return longest;
}

}  // namespace sml::results
