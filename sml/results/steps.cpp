#include <sml/results/steps.hpp>

#include <sml/results/message.hpp>
#include <sml/results/query.hpp>

#include <algorithm>
#include <charconv>
#include <tuple>
#include <vector>

namespace sml::results {

namespace {

/// A thread of a flow, with the position of its first step in the failure.
struct Thread {
    std::uint32_t flow, thread;
    std::int64_t  steps;
    std::int64_t  start = 0;
};

// Takes a number away from the start of a text.
bool take_number(std::string_view& text, std::uint32_t& number) {
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return error == std::errc();
}

bool take(std::string_view& text, std::string_view start) {
    if (!text.starts_with(start)) return false;
    text.remove_prefix(start.size());
    return true;
}

// As in "codeFlows/0/threadFlows/1/locations".
std::optional<Thread> thread_of(std::string_view name, std::int64_t steps) {
    Thread     thread{0, 0, steps};
    bool const fits = take(name, "codeFlows/") && take_number(name, thread.flow) &&
                      take(name, "/threadFlows/") && take_number(name, thread.thread) &&
                      name == "/locations";
    return fits ? std::optional(thread) : std::nullopt;
}

/// The threads of one finding after another.
class Threads {
public:
    explicit Threads(tables::Database& database)
        : rows_(database,
                "SELECT result_set, parent, \"key\", value FROM checks__failure__named_ints"),
          has_row_(rows_.next()) {}

    // Findings must be asked for in their order.
    void move_to(std::int64_t set, std::int64_t row) {
        auto const wanted = std::tuple(set, row);
        if (of_ == wanted) return;
        of_ = wanted;
        threads_.clear();
        for (; has_row_ && std::tuple(rows_.integer(0), rows_.integer(1)) <= wanted;
             has_row_ = rows_.next()) {
            if (std::tuple(rows_.integer(0), rows_.integer(1)) != wanted) continue;
            if (auto const one = thread_of(rows_.text(2), rows_.integer(3)))
                threads_.push_back(*one);
        }
        std::ranges::sort(threads_, {},
                          [](Thread const& one) { return std::tuple(one.flow, one.thread); });
        std::int64_t start = 0;
        for (Thread& one : threads_) {
            one.start = start;
            start += one.steps;
        }
    }

    // The last thread that starts at a position or before it.
    Thread of(std::int64_t position) const {
        auto const behind = std::ranges::upper_bound(threads_, position, {}, &Thread::start);
        return behind == threads_.begin() ? Thread{0, 0, 0} : behind[-1];
    }

private:
    Query                                  rows_;
    bool                                   has_row_;
    std::tuple<std::int64_t, std::int64_t> of_{0, 0};
    std::vector<Thread>                    threads_;
};

/// A step whose event is not known yet.
struct OpenStep {
    Hash          event;
    std::uint32_t finding, flow, thread, position;
};

}  // namespace

Hash hash_of_key(std::int64_t set, std::string_view uri, std::int64_t ordinal) {
    return hash_of(
        {Hash{static_cast<std::uint64_t>(set), static_cast<std::uint64_t>(ordinal)}, hash_of(uri)});
}

Hash hash_of(FlowStep const& step, Hash const& of_file) {
    return hash_of({Hash{step.flow, step.thread}, Hash{step.position, 1}, of_file,
                    hash_of(without_places(step.message.value_or("")))});
}

void for_each_step(tables::Database&                                               database,
                   std::function<std::uint32_t(std::int64_t, std::int64_t)> const& index_of,
                   std::function<bool(std::uint32_t)> const&                       is_wanted,
                   std::function<void(FlowStep const&)> const&                     use) {
    std::vector<OpenStep> open;
    {
        Threads threads(database);
        Query   rows(
              database,
              "SELECT result_set, parent, position, p0__p0, p0__p1 FROM checks__failure__steps");
        while (rows.next()) {
            auto const index = index_of(rows.integer(0), rows.integer(1));
            if (!is_wanted(index)) continue;
            threads.move_to(rows.integer(0), rows.integer(1));
            auto const thread = threads.of(rows.integer(2));
            open.push_back({hash_of_key(rows.integer(0), rows.text(3), rows.integer(4)), index,
                            thread.flow, thread.thread,
                            static_cast<std::uint32_t>(rows.integer(2) - thread.start)});
        }
    }
    if (open.empty()) return;
    std::ranges::sort(open, {}, &OpenStep::event);
    std::vector<bool> has_event(open.size());
    // The place of an event is that of its source reference, else that of its key.
    Query events(
        database,
        "SELECT result_set, key0, key1, coalesce(nullif(source_ref__localization__file, ''),"
        " nullif(key0, ''), CASE WHEN source_ref__kind & 2 THEN '' END), optional_string"
        " FROM events");
    auto const known = [&](int column) {
        return events.is_null(column) ? std::nullopt : std::optional(events.text(column));
    };
    while (events.next()) {
        auto const event = hash_of_key(events.integer(0), events.text(1), events.integer(2));
        auto       one = std::ranges::lower_bound(open, event, {}, &OpenStep::event);
        for (; one != open.end() && one->event == event; ++one) {
            has_event[static_cast<std::size_t>(one - open.begin())] = true;
            use({one->finding, one->flow, one->thread, one->position, known(3), known(4)});
        }
    }
    for (std::size_t i = 0; i < open.size(); ++i)
        if (!has_event[i])
            use({open[i].finding, open[i].flow, open[i].thread, open[i].position, {}, {}});
}

}  // namespace sml::results
