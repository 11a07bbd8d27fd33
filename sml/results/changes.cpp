#include <sml/results/changes.hpp>

#include <sml/results/message.hpp>

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

namespace sml::results {

namespace {

using Texts = std::vector<std::optional<std::string>>;

std::optional<std::string> text_of(tables::Statement const& row, int column) {
    if (row.is_null(column)) return std::nullopt;
    return std::string(row.text(column));
}

void bind_id(tables::Statement& statement, std::uint64_t id) {
    statement.bind(1, static_cast<std::int64_t>(id));
}

enum Text : std::size_t { message, level, kind, suppressed, class_, payload };
constexpr char const* texts_sql =
    "SELECT message, level, kind, suppressed, class, payload FROM findings WHERE id = ?";
constexpr int texts_count = 6;

// Apart from places.
bool have_other_texts(std::optional<std::string> const& older,
                      std::optional<std::string> const& newer) {
    if (!older || !newer) return older.has_value() != newer.has_value();
    return without_places(*older) != without_places(*newer);
}

// As in "flows[0][0][2].message".
std::string path_of_step(std::int64_t flow, std::int64_t thread, std::int64_t position) {
    auto const index = [](std::int64_t number) { return '[' + std::to_string(number) + ']'; };
    return "flows" + index(flow) + index(thread) + index(position);
}

}  // namespace

Comparison::Comparison(tables::Connection& connection)
    : texts_(connection.get(), texts_sql),
      steps_(connection.get(),
             "SELECT flow, thread, position, file, uri, message FROM steps WHERE finding = ?"
             " ORDER BY 1, 2, 3"),
      values_(connection.get(),
              "SELECT substr(fullkey, 2), atom FROM json_tree(?) WHERE atom IS NOT NULL"
              " AND key NOT IN ('first_position', 'second_position', 'reference')") {}

std::vector<Change> Comparison::changes(std::uint64_t older, std::uint64_t newer,
                                        SameFile const& are_same_files) {
    are_same_files_ = &are_same_files;
    std::vector<Change> all;
    Texts const         olds = texts_of(older);
    Texts const         news = texts_of(newer);
    if (have_other_texts(olds[message].value_or(""), news[message].value_or("")))
        all.push_back({"message", olds[message], news[message]});
    for (auto const& [which, name] :
         {std::pair{level, "level"}, std::pair{kind, "kind"}, std::pair{suppressed, "suppressed"},
          std::pair{class_, "class"}})
        if (olds[which] != news[which]) all.push_back({name, olds[which], news[which]});
    if (olds[payload] != news[payload])
        add_payload(olds[payload].value_or("null"), news[payload].value_or("null"), all);
    add_steps(steps_of(older), steps_of(newer), all);
    return all;
}

Texts Comparison::texts_of(std::uint64_t finding) {
    bind_id(texts_, finding);
    texts_.step();
    Texts texts;
    for (int i = 0; i < texts_count; ++i) texts.push_back(text_of(texts_, i));
    texts_.reset();
    return texts;
}

std::vector<Comparison::Step> Comparison::steps_of(std::uint64_t finding) {
    std::vector<Step> steps;
    bind_id(steps_, finding);
    while (steps_.step()) {
        auto said = text_of(steps_, 5);
        auto clean = said ? without_places(*said) : std::string();
        steps.push_back({steps_.integer(0), steps_.integer(1), steps_.integer(2),
                         std::string(steps_.text(3)), text_of(steps_, 4), std::move(said),
                         std::move(clean)});
    }
    steps_.reset();
    return steps;
}

// Compares the values of both, by their paths in JSON.
void Comparison::add_payload(std::string const& older, std::string const& newer,
                             std::vector<Change>& all) {
    std::map<std::string, std::pair<std::optional<std::string>, std::optional<std::string>>> values;
    auto const read = [&](std::string const& json, auto part) {
        values_.bind(1, std::string_view(json));
        while (values_.step()) {
            std::string path(values_.text(0));
            std::erase(path, '"');  // around names
            values[path].*part = text_of(values_, 1);
        }
        values_.reset();
    };
    using Both = std::pair<std::optional<std::string>, std::optional<std::string>>;
    read(older, &Both::first);
    read(newer, &Both::second);
    for (auto const& [path, both] : values)
        if (have_other_texts(both.first, both.second))
            all.push_back({"payload" + path, both.first, both.second});
}

bool Comparison::are_equal(Step const& older, Step const& newer) const {
    return older.clean == newer.clean && have_one_file(older, newer);
}

// Steps that are equal at the start and at the end of a thread are no difference, also if others
// between them are new or gone.
void Comparison::add_steps(std::vector<Step> const& olds, std::vector<Step> const& news,
                           std::vector<Change>& all) {
    auto const thread_of = [](Step const& step) { return std::pair(step.flow, step.thread); };
    auto const end_of = [&](auto step, auto const& steps) {
        return std::find_if(step, steps.end(),
                            [&](Step const& one) { return thread_of(one) != thread_of(*step); });
    };
    auto older = olds.begin();
    auto newer = news.begin();
    while (older != olds.end() || newer != news.end()) {
        bool const has_old = older != olds.end();
        bool const has_new = newer != news.end();
        bool const takes_old = has_old && (!has_new || thread_of(*older) <= thread_of(*newer));
        bool const takes_new = has_new && (!has_old || thread_of(*newer) <= thread_of(*older));
        auto const old_end = takes_old ? end_of(older, olds) : older;
        auto const new_end = takes_new ? end_of(newer, news) : newer;
        auto       old_last = old_end;
        auto       new_last = new_end;
        while (older != old_last && newer != new_last && are_equal(*older, *newer))
            ++older, ++newer;
        while (older != old_last && newer != new_last && are_equal(old_last[-1], new_last[-1]))
            --old_last, --new_last;
        while (older != old_last || newer != new_last)
            add_step(older != old_last ? &*older++ : nullptr,
                     newer != new_last ? &*newer++ : nullptr, all);
        older = old_end;
        newer = new_end;
    }
}

void Comparison::add_step(Step const* older, Step const* newer, std::vector<Change>& all) const {
    Step const& any = newer != nullptr ? *newer : *older;
    auto const  path = path_of_step(any.flow, any.thread, any.position);
    auto const  said = [](Step const* step) {
        return step == nullptr
                    ? std::nullopt
                    : std::optional(step->uri.value_or("") + ": " + step->message.value_or(""));
    };
    if (older == nullptr || newer == nullptr)
        return all.push_back({path, said(older), said(newer)});
    if (older->clean != newer->clean)
        all.push_back({path + ".message", older->message, newer->message});
    if (!have_one_file(*older, *newer)) all.push_back({path + ".uri", older->uri, newer->uri});
}

}  // namespace sml::results
