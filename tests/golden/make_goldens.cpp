// Updates the golden files of a directory to the present roots:
//
//   make_goldens DIRECTORY
//
// Files of a root are kept as long as its wire form is the one in which they were written: they are
// there to detect a change that reads them differently. Files of other roots are removed. Random
// values are drawn until all files together reach everything in the schema; of each round, the
// value that reaches most for its size is kept. A dump is written beside each file that has none.
// The files have canonical bytes, so they are the same in every process. If another compiler builds
// this program, it may evaluate arguments in another order and then draws other values: the files
// in the tree were made with g++.

#include <sml/inspect/canonical.hpp>
#include "tests/golden/goldens.hpp"
#include "tests/inspect/real_roots.hpp"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <stdexcept>

namespace {

using golden::Reached;
using sml::inspect::Root;

struct Candidate {
    Root const*                      root = nullptr;
    std::string                      bytes;
    std::vector<Reached::value_type> news;  ///< reached by no other file

    /// The number of new things for the size. Each further file adds a fixed cost.
    double worth() const {
        constexpr double burden = 2000;
        return static_cast<double>(news.size()) / (static_cast<double>(bytes.size()) + burden);
    }
};

std::string canonical(Root const& root, std::string const& bytes) {
    std::ostringstream out;
    write_canonical(root, bytes, out);
    return out.str();
}

class Goldens {
public:
    explicit Goldens(std::filesystem::path directory) : directory_(std::move(directory)) {
        for (Root const& root : sml::inspect::roots()) missing_.merge(golden::reachable_from(root));
        keep_files_of_unchanged_roots();
    }

    void choose() {
        constexpr int values = 60;
        constexpr int most_draws = 1000;
        for (Root const& root : sml::inspect::roots())
            if (!last_numbers_.contains(&root)) add(best_of({&root}, values));
        for (int draw = 0; !missing_.empty(); ++draw) {
            if (draw == most_draws)
                throw std::runtime_error("not reached: " + golden::name_of(*missing_.begin()));
            if (Candidate best = best_of(useful_roots(), values); !best.news.empty())
                add(std::move(best));
        }
    }

    void write() const {
        for (golden::File const& file : outdated_) {
            std::filesystem::remove(directory_ / file.name);
            std::filesystem::remove(directory_ / dump_name(file));
            std::cout << "removed " << file.name << '\n';
        }
        for (golden::File const& file : added_) {
            write_file(file.name, file.bytes);
            std::cout << "added " << file.name << '\n';
        }
        for (golden::File const& file : golden::files_in(directory_))
            if (std::string const name = dump_name(file); !exists(directory_ / name))
                write_file(name, dump_of(file));
        std::string digests;
        for (auto const& [stem, digest] : golden::digests_of_roots())
            digests += stem + ' ' + digest + '\n';
        write_file(golden::digests_name, digests);
    }

private:
    void keep_files_of_unchanged_roots() {
        golden::Digests const written = golden::digests_in(directory_);
        golden::Digests const now = golden::digests_of_roots();
        auto const            unchanged = [&](golden::File const& file) {
            auto const digest = written.find(file.root->stem);
            return digest != written.end() && now.at(digest->first) == digest->second;
        };
        for (golden::File const& file : golden::files_in(directory_)) {
            if (!unchanged(file)) {
                outdated_.push_back(file);
                continue;
            }
            for (auto const& reached : golden::reached_by(*file.root, file.bytes))
                missing_.erase(reached);
            int const number = std::stoi(file.name.substr(file.name.find('.') + 1));
            last_numbers_[file.root] = std::max(last_numbers_[file.root], number);
        }
    }

    void write_file(std::string const& name, std::string const& bytes) const {
        std::ofstream out(directory_ / name, std::ios::binary);
        out << bytes;
        if (!out.flush()) throw std::runtime_error("can't write " + name);
    }

    /// The roots that reach something that is still missing.
    std::vector<Root const*> useful_roots() const {
        std::vector<Root const*> useful;
        for (Root const& root : sml::inspect::roots())
            if (std::ranges::any_of(golden::reachable_from(root), [&](auto const& reached) {
                    return missing_.contains(reached);
                }))
                useful.push_back(&root);
        return useful;
    }

    /// The best of `values` random values of each root.
    Candidate best_of(std::vector<Root const*> const& roots, int values) {
        Candidate best;
        for (Root const* const root : roots)
            for (int i = 0; i < values; ++i) {
                Candidate drawn = candidate(*root);
                if (drawn.bytes.size() > golden::most_bytes) continue;
                if (best.root == nullptr || drawn.worth() > best.worth()) best = std::move(drawn);
            }
        return best;
    }

    Candidate candidate(Root const& root) {
        ++seed_;
        RandomValues random(seed_, {.elements = static_cast<int>(1 + seed_ % 3),
                                    .depth = static_cast<int>(1 + seed_ / 3 % 4)});
        Candidate    made{&root, real_root(root).random_bytes(random), {}};
        for (auto const& reached : golden::reached_by(root, made.bytes))
            if (missing_.contains(reached)) made.news.push_back(reached);
        return made;
    }

    void add(Candidate best) {
        for (auto const& reached : best.news) missing_.erase(reached);
        std::string const name = std::string(best.root->stem) + '.' +
                                 std::to_string(++last_numbers_[best.root]) + ".bin";
        added_.push_back({name, best.root, canonical(*best.root, best.bytes)});
    }

    std::filesystem::path      directory_;
    Reached                    missing_;
    std::vector<golden::File>  outdated_;  // roots with a changed wire form
    std::vector<golden::File>  added_;
    std::map<Root const*, int> last_numbers_;  // number of each root's last file
    std::uint64_t              seed_ = 0;
};

}  // namespace

int main(int count, char** arguments) try {
    if (count != 2) {
        std::cerr << "usage: make_goldens DIRECTORY\n";
        return 2;
    }
    Goldens goldens(arguments[1]);
    goldens.choose();
    goldens.write();
    return 0;
} catch (std::exception const& failure) {
    std::cerr << "make_goldens: " << failure.what() << '\n';
    return 2;
}
