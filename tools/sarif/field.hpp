#pragma once
// The types of the rows in fields.hpp.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>

namespace bradep::sarif {

/// What a row is about, in a log.
struct Sarif {
    /// The property that gets the value, as in `region.startLine`; empty if it is the object
    /// itself, null if no property of the object gets it.
    char const* path;
    char const* description = nullptr;  ///< for docs/sarif.md, if the path does not say it

    constexpr Sarif(char const* its_path, char const* its_description = nullptr)
        : path(its_path), description(its_description) {}

    std::string text() const {
        return description ? std::string(description) : "`" + std::string(path) + "`";
    }
};

/// A property that is written in another place, or that no log has.
constexpr Sarif no_property(char const* description) { return {nullptr, description}; }

/// A field of the set: its path, as `bradep dump` spells it, and a function that finds it in a
/// record.
template <class Access>
struct Held {
    char const* table;  ///< the path of the record; null if `field` is a description
    char const* field;  ///< the path below it
    Access      access;

    template <class Record>
    constexpr decltype(auto) operator()(Record const& record) const {
        return access(record);
    }
};

template <class Access>
constexpr Held<Access> held(char const* table, char const* field, Access access) {
    return {table, field, access};
}

/// Follows a chain of member pointers.
template <auto... members>
struct Along {
    template <class Record>
    auto& operator()(Record& record) const {
        return (record.*....*members);
    }
};
template <auto... members>
constexpr Along<members...> along;

/// The bits in a word of the set that say that a value is given. They distinguish an absent value
/// from 0 or an empty text.
template <class Access>
struct Given {
    std::uint32_t bits;
    Held<Access>  word;

    template <class Record>
    bool is_set(Record const& record) const {
        return (static_cast<std::uint32_t>(word(record)) & bits) != 0;
    }

    template <class Record>
    void set(Record const& record) const {
        auto& whole = word(record);
        using Word = std::remove_reference_t<decltype(whole)>;
        whole = static_cast<Word>(static_cast<std::uint32_t>(whole) | bits);
    }
};

template <class Access>
Given(std::uint32_t, Held<Access>) -> Given<Access>;

/// The field itself can say that the value is absent.
struct NoBits {};

/// The value of a field; a default value if the field is an empty optional.
template <class T>
T const& content(T const& field) {
    return field;
}
template <class T>
T content(std::optional<T> const& field) {
    return field.value_or(T());
}

/// One half of a 64-bit word, as a signed number.
template <class Word>
class Half {
public:
    Half(Word& word, int shift) : word_(word), shift_(shift) {}

    operator std::int32_t() const {
        return static_cast<std::int32_t>(static_cast<std::uint64_t>(word_) >> shift_ & mask);
    }
    void operator=(std::int32_t number) const {
        auto const others = static_cast<std::uint64_t>(word_) & ~(mask << shift_);
        word_ =
            static_cast<Word>(others | std::uint64_t{static_cast<std::uint32_t>(number)} << shift_);
    }

private:
    static constexpr std::uint64_t mask = 0xFFFFFFFF;

    Word& word_;
    int   shift_;
};

/// A property of a SARIF object and the field that holds it.
template <class Said, class Access, class Bits = NoBits>
struct Field {
    constexpr Field(Sarif its_sarif, char const* its_shown, Said its_said, Held<Access> its_held,
                    Bits its_given = {})
        : sarif(its_sarif), shown(its_shown), said(its_said), held(its_held), given(its_given) {}

    Sarif        sarif;
    char const*  shown;  ///< its name in `show --json`; null if it is not printed
    Said         said;   ///< the member of the object
    Held<Access> held;
    Bits         given;

    template <class Part, class Record>
    void hold(Part const& part, Record const& record) const {
        auto const& value = std::invoke(said, part);
        if constexpr (std::is_same_v<Bits, NoBits>) {
            held(record) = value;
        } else if (value) {
            given.set(record);
            held(record) = *value;
        }
    }

    template <class Part, class Record>
    void restore(Part& part, Record const& record) const {
        auto& value = std::invoke(said, part);
        if constexpr (std::is_same_v<Bits, NoBits>)
            value = held(record);
        else if (given.is_set(record))
            value = content(held(record));
    }
};

/// A property that only a bit holds.
template <class Said, class Access>
struct Flag {
    Sarif         sarif;
    Said          said;
    Given<Access> given;

    template <class Part, class Record>
    void hold(Part const& part, Record const& record) const {
        if (std::invoke(said, part)) given.set(record);
    }

    template <class Part, class Record>
    void restore(Part& part, Record const& record) const {
        std::invoke(said, part) = given.is_set(record);
    }
};

template <class Said, class Access>
Flag(Sarif, Said, Given<Access>) -> Flag<Said, Access>;

/// A property that needs functions of its own to be written and read: `hold_value(value, record)`
/// and `restore_value(value, record)`.
template <class Said, class Hold, class Restore>
struct ByHand {
    Sarif       sarif;
    char const* shown;
    Said        said;
    char const* table;
    char const* field;
    Hold        hold_value;
    Restore     restore_value;

    template <class Part, class Record>
    void hold(Part const& part, Record const& record) const {
        hold_value(std::invoke(said, part), record);
    }

    template <class Part, class Record>
    void restore(Part& part, Record const& record) const {
        restore_value(std::invoke(said, part), record);
    }
};

template <class Said, class Hold, class Restore>
ByHand(Sarif, char const*, Said, char const*, char const*, Hold, Restore)
    -> ByHand<Said, Hold, Restore>;

/// A field that is computed from others or is constant. It is written and never read.
template <class Make>
struct Derived {
    Sarif       what;
    char const* table;
    char const* field;
    Make        make;  ///< `make(object, record)` writes the field

    template <class Part, class Record>
    void hold(Part const& part, Record const& record) const {
        make(part, record);
    }

    template <class Part, class Record>
    void restore(Part&, Record const&) const {}
};

template <class Make>
Derived(Sarif, char const*, char const*, Make) -> Derived<Make>;

template <class Use, class... Rows>
constexpr void for_each_row(std::tuple<Rows...> const& rows, Use const& use) {
    std::apply([&](auto const&... row) { (use(row), ...); }, rows);
}

/// Writes the properties of the object into the record, which must be new.
template <class Rows, class Part, class Record>
void hold(Rows const& rows, Part const& part, Record const& record) {
    for_each_row(rows, [&](auto const& row) { row.hold(part, record); });
}

/// Sets the properties of the object, which must be new, from the record.
template <class Rows, class Part, class Record>
void restore(Rows const& rows, Part& part, Record const& record) {
    for_each_row(rows, [&](auto const& row) { row.restore(part, record); });
}

}  // namespace bradep::sarif
