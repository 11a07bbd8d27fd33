#include <sml/inspect/dropped_entries.hpp>

#include <sml/inspect/keys/key_table.hpp>
#include <sml/inspect/walk/walker.hpp>

#include <memory_resource>
#include <unordered_map>
#include <utility>

namespace sml::inspect {

namespace {

using SeededHashes = std::pmr::unordered_set<std::uint64_t>;  // of seeded hashes

// The first walk finds the hashes that two keys of one container may share, by 32 bits of each. A
// hash that is found by mistake does no harm.
class SharedHashes : public BaseVisitor {
public:
    explicit SharedHashes(std::pmr::memory_resource* memory) : found(memory), tables_(memory) {}

    static constexpr bool compares_keys = true;
    static constexpr bool wants_values = false;

    void open_keys(Type const&, std::uint64_t count) {
        if (open_ == tables_.size()) tables_.emplace_back();
        tables_[open_++].assign(slots_for(count), 0);
    }

    void close_keys() { close_slots(tables_[--open_]); }

    bool add_key(Type const&, std::uint64_t, std::uint64_t hash) {
        if (hash == Keys::no_hash) return true;
        auto&      table = tables_[open_ - 1];
        auto const mark = static_cast<std::uint32_t>(hash) | 1;
        for (std::size_t i = first_slot(hash, table.size());;
             i = i + 1 == table.size() ? 0 : i + 1) {
            if (table[i] == mark) found.insert(hash);
            if (table[i] == mark || table[i] == 0) {
                table[i] = mark;
                return true;
            }
        }
    }

    SeededHashes found;

private:
    std::pmr::vector<std::pmr::vector<std::uint32_t>> tables_;  // 0: a free slot
    std::size_t                                       open_ = 0;
};

// The second walk finds the repeated keys among those with such a hash.
class RepeatedKeys : public BaseVisitor {
public:
    RepeatedKeys(Walk const& walk, SeededHashes shared, std::size_t listed)
        : found(&walk.budget),
          walk_(walk),
          shared_(std::move(shared)),
          listed_(listed),
          open_(&walk.budget) {}

    static constexpr bool compares_keys = true;
    static constexpr bool wants_values = false;

    void open_keys(Type const& type, std::uint64_t) {
        open_.push_back({&type, Container::Keys(&walk_.budget)});
    }
    void close_keys() { open_.pop_back(); }

    bool add_key(Type const& key, std::uint64_t offset, std::uint64_t hash) {
        if (hash == Keys::no_hash || !shared_.contains(hash)) return true;
        auto& keys = open_.back().keys;
        auto [known, end] = keys.equal_range(hash);
        while (known != end && !walk_.keys.are_equal(key, known->second, offset)) ++known;
        if (known == end) {
            keys.emplace(hash, offset);
            return true;
        }
        // The later key takes the place of the earlier one: else an earlier long number would be
        // parsed again for each equal key.
        std::uint64_t const earlier = std::exchange(known->second, offset);
        bool const          last_wins = open_.back().type->last_wins;
        found.entries.insert(last_wins ? earlier : offset);
        found.are_read_over = found.are_read_over || last_wins;
        return false;
    }

    template <class Make>
    void odd(Oddity oddity, Make const& make) {
        if (oddity == Oddity::repeated && found.findings.size() < listed_)
            found.findings.push_back(make());
    }

    DroppedEntries found;

private:
    struct Container {
        using Keys = std::pmr::unordered_multimap<std::uint64_t, std::uint64_t>;

        Type const* type;
        Keys        keys;  // offsets by hash
    };

    Walk const&                 walk_;
    SeededHashes                shared_;
    std::size_t                 listed_;
    std::pmr::vector<Container> open_;
};

}  // namespace

DroppedEntries dropped_entries(Root const& root, std::string_view bytes,
                               VerifyOptions const& options, Budget& budget) {
    SharedHashes shared(&budget);
    {
        Walk walk(bytes, options.walk(), budget);
        Walker(walk, shared).run(*root.type);
    }
    if (shared.found.empty()) return DroppedEntries(&budget);
    Walk         walk(bytes, options.walk(), budget);
    RepeatedKeys repeated(walk, std::move(shared.found), options.listed);
    Walker(walk, repeated).run(*root.type);
    return std::move(repeated.found);
}

}  // namespace sml::inspect
