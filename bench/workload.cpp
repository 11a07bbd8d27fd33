#include "bench/workload.hpp"

#include "bench/filler.hpp"
#include "bench/mix.hpp"
#include "bench/names.hpp"

#include <utility>
#include <vector>

namespace bench {

namespace {

/// The keys of a map that is being filled, and the number of keys of each name.
class NumberedKeys {
public:
    explicit NumberedKeys(Names const& names) : names_(&names), next_(names.size()) {}

    Key add(Draws& draws) {
        std::size_t const path = names_->draw_path(draws);
        keys_.push_back({static_cast<std::uint32_t>(path), next_[path]++});
        return (*this)[keys_.size() - 1];
    }

    Key operator[](std::size_t index) const {
        return {(*names_)[keys_[index].path], keys_[index].number};
    }

    Key any(Draws& draws) const {
        return (*this)[draws.below(static_cast<std::uint32_t>(keys_.size()))];
    }

    void store_numbers(std::unordered_map<sml::Strings_T, std::int32_t>& numbers) const {
        for (std::size_t name = 0; name < next_.size(); ++name)
            numbers.emplace((*names_)[name], next_[name]);
    }

private:
    struct Short {
        std::uint32_t path;
        std::int32_t  number;
    };

    Names const*              names_;
    std::vector<std::int32_t> next_;
    std::vector<Short>        keys_;
};

/// Fills every entry in place in its container: at a million checks there is no memory for copies.
class Build {
public:
    Build(std::size_t checks, std::uint64_t seed, Arms_Drawn arms)
        : checks_(checks), names_(checks, seed), filler_(names_, seed + 1, arms) {}

    sml::Application_Results::T_Application_Results run() {
        sml::Application_Results::T_Application_Results result;
        result.first_int = static_cast<std::int32_t>(checks_);
        fill_table(result.blocks, result.block_numbers, checks_ / 2);
        NumberedKeys const checks = fill_table(result.checks, result.check_numbers, checks_);
        NumberedKeys const events = fill_table(result.events, result.event_numbers, checks_);
        NumberedKeys const infos = fill_table(result.infos, result.info_numbers, 3 * checks_);
        fail_every_tenth(result.checks, checks);
        fill_by_name(result.functions, checks_ / 20);
        fill_key_sets(result.first_key_sets, checks, events);
        fill_key_sets(result.second_key_sets, checks, infos);
        fill_integer_sets(result.integer_sets);
        fill_by_name(result.signatures, checks_ / 20);
        return result;
    }

private:
    template <class Table>
    NumberedKeys fill_table(Table& table, std::unordered_map<sml::Strings_T, std::int32_t>& numbers,
                            std::size_t count) {
        NumberedKeys keys(names_);
        for (std::size_t i = 0; i < count; ++i)
            filler_.fill(table.try_emplace(keys.add(filler_.draws())).first->second);
        keys.store_numbers(numbers);
        return keys;
    }

    template <class Table>
    void fail_every_tenth(Table& table, NumberedKeys const& keys) {
        for (std::size_t i = 0; i < checks_; i += 10)
            filler_.fill(table.find(keys[i])->second.failure.emplace());
    }

    template <class Table>
    void fill_by_name(Table& table, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i)
            filler_.fill(table.try_emplace(names_.identifier(i)).first->second);
    }

    template <class Table>
    void fill_key_sets(Table& table, NumberedKeys const& keys, NumberedKeys const& elements) {
        for (std::size_t i = 0; i < checks_ / 4; ++i) {
            auto& set = table.try_emplace(keys[4 * i]).first->second;
            for (auto left = filler_.draws().below(most_in_key_set + 1); left > 0; --left)
                set.insert(elements.any(filler_.draws()));
        }
    }

    template <class Table>
    void fill_integer_sets(Table& table) {
        for (std::size_t i = 0; i < checks_ / 100; ++i) {
            auto& set = table.try_emplace(names_.identifier(i)).first->second;
            for (auto left = draws_for_integer_set; left > 0; --left) filler_.add_entry(set);
        }
    }

    std::size_t checks_;
    Names       names_;
    Filler      filler_;
};

}  // namespace

sml::Application_Results::T_Application_Results workload(std::size_t checks, std::uint64_t seed) {
    return Build(checks, seed, Arms_Drawn::usual).run();
}

sml::Application_Results::T_Application_Results workload_with_payloads(std::size_t   checks,
                                                                       std::uint64_t seed) {
    return Build(checks, seed, Arms_Drawn::with_payload).run();
}

}  // namespace bench
