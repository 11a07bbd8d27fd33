// Makes the golden files anew:
//
//   make_goldens DIRECTORY    takes away the golden files there and writes new ones
//
// Random values are drawn until together they reach all that the schema has; of each draw the one
// is kept that reaches most for its size. The files hold canonical bytes, so they come out the same
// in every process. Built by another compiler, which may evaluate arguments in another order, the
// program draws other values: the files in the tree are those of g++.

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
    std::vector<Reached::value_type> news;  ///< what it reaches first

    /// News for the size; a file more is a burden too.
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
    Goldens() {
        for (Root const& root : sml::inspect::roots()) missing_.merge(golden::reachable_from(root));
    }

    void choose() {
        constexpr int values = 60;
        constexpr int most_draws = 1000;
        for (Root const& root : sml::inspect::roots()) keep(best_of({&root}, values));
        for (int draw = 0; !missing_.empty(); ++draw) {
            if (draw == most_draws)
                throw std::runtime_error("not reached: " + golden::name_of(*missing_.begin()));
            if (Candidate best = best_of(useful_roots(), values); !best.news.empty())
                keep(std::move(best));
        }
    }

    void write(std::filesystem::path const& directory) const {
        for (golden::File const& file : golden::files_in(directory))
            std::filesystem::remove(directory / file.name);
        std::map<Root const*, int> numbers;
        for (Candidate const& kept : kept_) {
            std::string const name =
                std::string(kept.root->stem) + '.' + std::to_string(++numbers[kept.root]) + ".bin";
            std::ofstream out(directory / name, std::ios::binary);
            out << kept.bytes;
            if (!out.flush()) throw std::runtime_error("can't write " + name);
        }
    }

private:
    /// The roots below which something is missing.
    std::vector<Root const*> useful_roots() const {
        std::vector<Root const*> useful;
        for (Root const& root : sml::inspect::roots())
            if (std::ranges::any_of(golden::reachable_from(root), [&](auto const& reached) {
                    return missing_.contains(reached);
                }))
                useful.push_back(&root);
        return useful;
    }

    /// The worthiest of so many random values of each root.
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

    void keep(Candidate best) {
        for (auto const& reached : best.news) missing_.erase(reached);
        best.bytes = canonical(*best.root, best.bytes);
        kept_.push_back(std::move(best));
    }

    Reached                missing_;
    std::vector<Candidate> kept_;
    std::uint64_t          seed_ = 0;
};

}  // namespace

int main(int count, char** arguments) try {
    if (count != 2) {
        std::cerr << "usage: make_goldens DIRECTORY\n";
        return 2;
    }
    Goldens goldens;
    goldens.choose();
    goldens.write(arguments[1]);
    return 0;
} catch (std::exception const& failure) {
    std::cerr << "make_goldens: " << failure.what() << '\n';
    return 2;
}
