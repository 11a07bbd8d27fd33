#include <sml/tables/rows.hpp>

#include <sml/inspect/text/double_text.hpp>
#include <sml/inspect/text/utf8.hpp>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace sml::tables {

using inspect::Arm;
using inspect::Kind;
using inspect::Type;
using inspect::VerifiedBytes;

namespace {

bool has_fixed_size(Type const& type) {
    return type.is_plain_word() || type.kind == Kind::flag || type.kind == Kind::flags ||
           type.kind == Kind::enumeration || type.kind == Kind::reference;
}

}  // namespace

/// Makes the operations for the entries of a table.
class Rows::Operations {
public:
    /// `is_marked` has an element for each value. `below` is the index of the table whose entries
    /// are the next level, or `LayoutStep::none`.
    Operations(Table const& table, std::vector<bool> const& is_marked, std::uint32_t below)
        : layout_(table.layout), is_marked_(is_marked), below_(below) {
        add(0, layout_.size());
    }

    std::vector<Operation> all;

private:
    using Code = Operation::Code;

    void add(std::size_t first, std::size_t end) {
        for (std::size_t i = first; i < end;) {
            LayoutStep const& step = layout_[i];
            if (is_marked(step)) all.push_back({Code::mark, step.index});
            if (step.kind == LayoutStep::Kind::optional && is_needed(i + 1, step.end)) {
                add_optional(i);
            } else if (is_entered(step)) {
                all.push_back({Code::enter});
            } else {
                add_skip(*step.type);
            }
            i = step.kind == LayoutStep::Kind::optional ? step.end : i + 1;
        }
    }

    void add_optional(std::size_t index) {
        std::size_t const at = all.size();
        all.push_back({Code::optional});
        add(index + 1, layout_[index].end);
        all[at].number = static_cast<std::uint32_t>(all.size());
        first_to_merge_ = all.size();
    }

    void add_skip(Type const& type) {
        if (type.kind == Kind::string) return all.push_back({Code::string});
        if (!has_fixed_size(type)) return all.push_back({Code::skip, 0, &type});
        bool const merges = all.size() > first_to_merge_ && all.back().code == Code::take;
        if (!merges) all.push_back({Code::take});
        all.back().number += type.least_size;
    }

    bool is_entered(LayoutStep const& step) const {
        return step.kind == LayoutStep::Kind::child && step.index == below_;
    }
    bool is_marked(LayoutStep const& step) const {
        bool const has_value =
            step.kind != LayoutStep::Kind::child && step.index != LayoutStep::none;
        return has_value && is_marked_[step.index];
    }

    bool is_needed(std::size_t first, std::size_t end) const {
        return std::any_of(
            layout_.begin() + static_cast<std::ptrdiff_t>(first),
            layout_.begin() + static_cast<std::ptrdiff_t>(end),
            [&](LayoutStep const& step) { return is_marked(step) || is_entered(step); });
    }

    std::vector<LayoutStep> const& layout_;
    std::vector<bool> const&       is_marked_;
    std::uint32_t                  below_;
    std::size_t                    first_to_merge_ = 0;  // operations before it are jumped to
};

Rows::Rows(inspect::Contents const& contents, Schema const& schema, Table const& table,
           std::vector<bool> const& is_wanted)
    : at_(contents),
      marks_(table.values, nowhere),
      types_(table.values),
      budget_(std::numeric_limits<std::uint64_t>::max()),
      json_(json_text_, inspect::DumpOptions::Form::compact, budget_) {
    std::vector<bool> is_marked(table.values);
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        Column const& column = table.columns[i];
        if (is_wanted[i] && !column.is_of_row()) is_marked[column.value] = true;
    }
    for (std::uint32_t value = 0; value < table.values; ++value)
        if (is_marked[value]) marked_.push_back(value);
    for (LayoutStep const& step : table.layout)
        if (step.kind != LayoutStep::Kind::child && step.index != LayoutStep::none)
            types_[step.index] = step.type;

    auto below = LayoutStep::none;
    for (Table const* level = &table;; level = &schema.tables[*level->parent]) {
        std::vector<bool> const none(level->values);
        levels_.push_back({Operations(*level, level == &table ? is_marked : none, below).all});
        if (!level->parent) break;
        below = static_cast<std::uint32_t>(level - schema.tables.data());
    }
    std::ranges::reverse(levels_);
}

bool Rows::next() {
    if (depth_ == not_started) {
        depth_ = 0;
        levels_[0].left = 1;
    }
    for (;;) {
        Level& level = levels_[depth_];
        if (level.left == 0) {
            if (depth_ == 0) return false;
            --depth_;
            run(levels_[depth_], levels_[depth_].resumed);
            continue;
        }
        --level.left;
        ++level.row;
        ++level.position;
        bool const is_of_table = &level == &levels_.back();
        if (is_of_table) {
            forget_marks();
            start_ = at_.offset();
        }
        bool const enters = run(level, 0);
        if (is_of_table) return true;
        if (enters) open(levels_[++depth_]);
    }
}

void Rows::open(Level& level) {
    level.left = at_.take_word<std::uint32_t>();
    level.position = -1;
}

void Rows::forget_marks() {
    for (std::uint32_t const value : marked_) marks_[value] = nowhere;
}

// Returns whether it came to the entries of the next level.
bool Rows::run(Level& level, std::size_t first) {
    Operation const* const operations = level.operations.data();
    std::size_t const      end = level.operations.size();
    VerifiedBytes          at = at_;
    for (std::size_t i = first; i < end; ++i) {
        Operation const& operation = operations[i];
        switch (operation.code) {
            case Operation::Code::take: at.take(operation.number); break;
            case Operation::Code::string:
                if (!at.take_string_word().refers()) at.take_block();
                break;
            case Operation::Code::skip: at.skip(*operation.type); break;
            case Operation::Code::mark: marks_[operation.number] = at.offset(); break;
            case Operation::Code::optional:
                if (!at.take_flag()) i = operation.number - 1;
                break;
            case Operation::Code::enter:
                level.resumed = i + 1;
                at_ = at;
                return true;
        }
    }
    at_ = at;
    return false;
}

Cell Rows::cell(Column const& column) {
    switch (column.form) {
        case Form::row: return row();
        case Form::parent: return parent();
        case Form::position: return position();
        default: break;
    }
    std::uint64_t const offset = marks_[column.value];
    if (offset == nowhere) return {};
    Type const& type = *types_[column.value];
    return cell_of_value(column, type, VerifiedBytes(at_.contents(), offset));
}

Cell Rows::cell_of_value(Column const& column, Type const& type, VerifiedBytes at) {
    switch (column.form) {
        case Form::integer:
            if (type.kind == Kind::int32) return std::int64_t{at.take_word<std::int32_t>()};
            if (type.kind == Kind::uint32) return std::int64_t{at.take_word<std::uint32_t>()};
            return at.take_word<std::int64_t>();
        case Form::flag: return std::int64_t{at.take_flag()};
        case Form::text:
            return from_bytes(type.kind == Kind::string ? at.take_string() : at.take_block());
        case Form::word: return shown(std::to_string(at.take_word<std::uint64_t>()));
        case Form::enumerator: {
            auto const number = at.take_word<std::int32_t>();
            if (!type.has_tag(number)) return shown(std::to_string(number));
            return Text{type.enumerators[static_cast<std::size_t>(number)], true};
        }
        case Form::arm: {
            auto const tag = at.take_word<std::int32_t>();
            if (!type.has_tag(tag)) return {};
            return Text{type.arms[static_cast<std::size_t>(tag)].name, true};
        }
        case Form::args: return args(type, at);
        case Form::decimal: return decimal(at);
        case Form::order: return order(at);
        case Form::exact: return exact(type, at);
        case Form::width: at.take_block(); return std::int64_t{at.take_word<std::int32_t>()};
        case Form::nearest: {
            double const number = type.kind == Kind::number
                                      ? at.take_number()
                                      : at.take_float([](std::string_view text, std::int32_t) {
                                            return inspect::nearest_to_float(text);
                                        });
            if (std::isnan(number)) return {};
            return number;
        }
        case Form::json: return json(type, at);
        default: __builtin_unreachable();  // forms of the row itself
    }
}

Cell Rows::shown(std::string_view text) {
    text_ = text;
    return Text{text_, false};
}

Cell Rows::from_bytes(std::string_view text) {
    if (is_valid_text(text)) [[likely]]
        return Text{text, true};
    text_.clear();
    append_valid_text(text_, text);
    return Text{text_, false};
}

Cell Rows::decimal(VerifiedBytes at) {
    at.take_big_integer([&](std::string_view digits) {
        text_.clear();
        inspect::Budget::Hold const held(budget_, inspect::memory_for_conversion(digits.size()));
        inspect::append_decimal(text_, digits);
    });
    return Text{text_, false};
}

Cell Rows::order(VerifiedBytes at) {
    at.take_big_integer([&](std::string_view digits) {
        text_.clear();
        append_ordered(text_, digits);
    });
    return Text{text_, false};
}

Cell Rows::exact(Type const& type, VerifiedBytes at) {
    if (type.kind == Kind::ieee_float)
        return at.take_float([&](std::string_view text, std::int32_t) { return shown(text); });
    text_.clear();
    inspect::append_json_double(text_, at.take_number());
    std::erase(text_, '"');  // around names, such as "inf"
    return Text{text_, false};
}

Cell Rows::args(Type const& type, VerifiedBytes at) {
    auto const tag = at.take_word<std::int32_t>();
    if (type.kind == Kind::reference) {
        auto const word = at.take_word<std::uint64_t>();
        auto const text = type.is_signed_word(tag) ? std::to_string(static_cast<std::int64_t>(word))
                                                   : std::to_string(word);
        return shown('"' + text + '"');
    }
    Arm const* const arm = type.with_payload(tag);
    if (arm == nullptr) return {};
    return json(*arm->payload, at);
}

Cell Rows::json(Type const& type, VerifiedBytes at) {
    json_text_.str({});
    inspect::visit_value(type, at, json_);
    json_.flush();
    return shown(json_text_.view());
}

std::uint64_t rows_in_one_parent(inspect::Contents const& contents, Schema const& schema,
                                 Table const& table) {
    Rows rows(contents, schema, table, std::vector<bool>(table.columns.size()));
    return rows.next() ? std::uint64_t{rows.left()} + 1 : 0;
}

bool is_valid_text(std::string_view text) {
    constexpr std::uint64_t highest_bits = 0x8080808080808080;
    constexpr std::uint64_t ones = 0x0101010101010101;
    while (!text.empty()) {
        // Eight bytes at once while they are ASCII without NUL.
        if (std::uint64_t word; text.size() >= sizeof word) {
            std::memcpy(&word, text.data(), sizeof word);
            if ((((word - ones) | word) & highest_bits) == 0) {
                text.remove_prefix(sizeof word);
                continue;
            }
        }
        if (text.front() == '\0') return false;
        auto const character = inspect::first_character(text);
        if (!character.valid) return false;
        text.remove_prefix(character.length);
    }
    return true;
}

void append_valid_text(std::string& valid, std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdef";
    while (!text.empty()) {
        auto const character = inspect::first_character(text);
        auto const byte = static_cast<unsigned char>(text.front());
        if (byte == 0 || !character.valid) {
            valid += byte == 0 ? "\\u00" : "\\udc";
            valid += digits[byte >> 4];
            valid += digits[byte & 15];
        } else {
            valid += text.substr(0, character.length);
        }
        text.remove_prefix(character.length);
    }
}

// The sign, as 0 or 1; the number of digits of the number of digits, as a letter; the number of
// digits; the digits. If the integer is negative, each character after the sign is replaced by its
// counterpart from the other end of its alphabet.
void append_ordered(std::string& text, std::string_view digits) {
    bool const is_negative = digits.starts_with('-');
    if (is_negative) digits.remove_prefix(1);
    auto const count = std::to_string(digits.size());
    text += is_negative ? '0' : '1';
    auto const letter = static_cast<char>('a' + count.size() - 1);
    text += is_negative ? static_cast<char>('a' + 'z' - letter) : letter;
    constexpr std::string_view rising = "0123456789abcdef";
    auto const                 counterpart = [&](char digit, std::size_t base) {
        return rising[base - 1 - rising.find(digit)];
    };
    for (char const digit : count) text += is_negative ? counterpart(digit, 10) : digit;
    for (char const digit : digits) text += is_negative ? counterpart(digit, 16) : digit;
}

}  // namespace sml::tables
