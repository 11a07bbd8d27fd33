#include <sml/inspect/dump.hpp>

#include <sml/inspect/dropped_entries.hpp>
#include <sml/inspect/json_visitor.hpp>
#include <sml/inspect/read_over.hpp>
#include <sml/inspect/walk/path_match.hpp>
#include <sml/inspect/walk/walker.hpp>

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

namespace sml::inspect {

namespace {

using Form = DumpOptions::Form;

/// Passes on the events in the selected part, except those of the entries that a reader drops.
class SelectingVisitor : public BaseVisitor {
public:
    SelectingVisitor(Walk const& walk, Root const& root, std::ostream& out,
                     DumpOptions const& options, DroppedEntries dropped)
        : walk_(walk),
          root_(root),
          options_(options),
          match_(walk, options.path),
          dropped_(std::move(dropped.entries)),
          repeated_(std::move(dropped.findings)),
          json_(out, options.form, walk.budget) {
        dumped.odd_count = dropped_.size();
        if (options.path.empty()) select(*root.type, 0);
    }

    void finish() {
        if (is_selected_) deselect();
        dumped.found = was_selected_;
        dumped.reached = match_.reached();
        // The unsafe finding is the last one, and is always listed.
        auto&      findings = dumped.findings;
        auto const unsafe = [&] { return findings.end() - (dumped.answer == Answer::unsafe); };
        findings.insert(unsafe(), repeated_.begin(), repeated_.end());
        std::ranges::stable_sort(findings.begin(), unsafe(), {}, &Finding::offset);
        auto const listed = static_cast<std::ptrdiff_t>(options_.walk.listed);
        if (unsafe() - findings.begin() > listed)
            findings.erase(findings.begin() + listed, unsafe());
        if (dumped.answer == Answer::good && dumped.odd_count > 0) dumped.answer = Answer::odd;
        json_.flush();
    }

    void integer(Type const& type, std::int64_t value) {
        if (is_on()) json_.integer(type, value);
    }
    void natural(Type const& type, std::uint64_t value) {
        if (is_on()) json_.natural(type, value);
    }
    void flag(bool value) {
        if (is_on()) json_.flag(value);
    }
    void number(double value) {
        if (is_on()) json_.number(value);
    }
    void big_integer(std::string_view value) {
        if (is_on()) json_.big_integer(value);
    }
    void ieee_float(std::string_view value, std::int32_t width) {
        if (is_on()) json_.ieee_float(value, width);
    }
    void string(std::string_view value) {
        if (is_on()) json_.string(value);
    }
    void text(std::string_view value) {
        if (is_on()) json_.text(value);
    }
    void enumeration(Type const& type, std::int32_t value) {
        if (is_on()) json_.enumeration(type, value);
    }
    void absent(Type const& type) {
        if (is_on()) json_.absent(type);
    }
    void reference(Type const& type, std::int32_t tag, std::uint64_t word) {
        if (is_on()) json_.reference(type, tag, word);
    }
    void begin(Type const& type, std::uint64_t count) {
        if (is_on()) json_.begin(type, count);
    }

    void part(Type const& type, std::uint64_t index) {
        leave_part();
        end_skipping();
        if (!dropped_.empty() && type.is_container() && dropped_.contains(walk_.offset()))
            skipped_depth_ = std::min(skipped_depth_, walk_.depth());
        if (is_on()) json_.part(type, index);
        enter_part(type.kind == Kind::map ? *type.key
                   : type.is_container()  ? *type.element
                   : type.parts.empty()   ? type
                                          : *type.parts[index].type);
    }

    void entry_value(Type const& type) {
        leave_part();
        if (is_on()) json_.entry_value(type);
        enter_part(*type.element);
    }

    void end_entry(Type const& type) {
        leave_part();
        if (is_on()) json_.end_entry(type);
    }

    void end(Type const& type) {
        leave_part();
        end_skipping();
        if (is_on()) json_.end(type);
    }

    void begin_variant(Type const& type, std::int32_t tag, Arm const* arm) {
        if (is_on()) json_.begin_variant(type, tag, arm);
    }

    void payload(Type const& type) {
        if (is_on()) json_.payload(type);
        enter_part(*type.arms[walk_.step().part].payload);
    }

    void end_variant(Type const& type) {
        leave_part();
        if (is_on()) json_.end_variant(type);
    }

    void end_root() { is_root_over_ = true; }

    template <class Make>
    void odd(Oddity, Make const& make) {
        ++dumped.odd_count;
        if (listed_++ < options_.walk.listed) dumped.findings.push_back(make());
    }

    void unsafe(Finding const& finding) {
        dumped.answer = Answer::unsafe;
        dumped.findings.push_back(finding);
        if (is_root_over_)
            behind_value_ = &dumped.findings.back();
        else if (is_on())
            json_.mark(finding);
        else if (is_selected_)
            json_.mark_entry(finding);
    }

    Dumped dumped;

private:
    static constexpr std::size_t no_depth = ~std::size_t{0};

    bool is_on() const { return is_selected_ && skipped_depth_ == no_depth; }

    void select(Type const& type, std::size_t depth) {
        if (options_.form == Form::lines && !holds_lines(type)) return;
        is_selected_ = was_selected_ = true;
        selected_depth_ = depth;
        json_.start(root_, options_.path);
    }

    static bool holds_lines(Type const& type) {
        if (type.kind == Kind::optional || type.kind == Kind::boxed)
            return holds_lines(*type.element);
        return type.is_container();
    }

    void deselect() {
        is_selected_ = false;
        json_.finish(behind_value_);
    }

    void enter_part(Type const& type) {
        bool const is_searched = !options_.path.empty() && skipped_depth_ == no_depth;
        if (is_searched && match_.step()) select(type, walk_.depth());
    }

    // The selected part ends where the next part of the value around it begins, or where that value
    // ends.
    void leave_part() {
        bool const is_part = is_selected_ && !options_.path.empty();
        if (is_part && walk_.depth() <= selected_depth_) deselect();
    }

    void end_skipping() {
        bool const is_skipping = skipped_depth_ != no_depth;
        if (is_skipping && walk_.depth() <= skipped_depth_) skipped_depth_ = no_depth;
    }

    Walk const&                       walk_;
    std::size_t                       listed_ = 0;
    Root const&                       root_;
    DumpOptions const&                options_;
    PathMatch                         match_;
    decltype(DroppedEntries::entries) dropped_;
    std::vector<Finding>              repeated_;
    JsonVisitor                       json_;
    bool                              is_selected_ = false;
    bool                              was_selected_ = false;
    bool                              is_root_over_ = false;
    Finding const*                    behind_value_ = nullptr;
    std::size_t                       selected_depth_ = 0;
    std::size_t                       skipped_depth_ = no_depth;
};

Dumped dump_entries(Root const& root, std::string_view bytes, std::ostream& out,
                    DumpOptions const& options, DroppedEntries dropped, Budget& budget) {
    Walk             walk(bytes, options.walk.walk(), budget);
    SelectingVisitor visitor(walk, root, out, options, std::move(dropped));
    try {
        Walker(walk, visitor).run(*root.type);
        visitor.finish();
    } catch (OutputEnded const&) {
        // The state of the stream shows it to the caller. The findings until then are returned.
    }
    return std::move(visitor.dumped);
}

/// Dumps the value that a reader makes of bytes that are within the limits. Their kept value is,
/// too, except that an empty text is defined where an id without definition was referred to. So
/// only the depth is limited here.
Dumped dump_kept(Root const& root, std::string_view bytes, std::ostream& out,
                 DumpOptions const& options, Budget& budget) {
    constexpr auto most = std::numeric_limits<std::uint64_t>::max();
    DumpOptions    unlimited = options;
    unlimited.walk.limits = {
        .depth = options.walk.limits.depth, .elements = most, .text_bytes = most, .memory = most};
    auto const kept = bytes_kept(root, bytes, options.walk, budget);
    return dump_entries(root, kept, out, unlimited, DroppedEntries(&budget), budget);
}

}  // namespace

Dumped dump(Root const& root, std::string_view bytes, std::ostream& out,
            DumpOptions const& options) {
    Budget         budget(options.walk.limits.own_memory);
    DroppedEntries dropped = dropped_entries(root, bytes, options.walk, budget);
    bool const     are_read_over = dropped.are_read_over;
    Verdict        verdict;
    if (are_read_over) {
        verdict = verify(root, bytes, options.walk);
        if (verdict.answer != Answer::unsafe) {
            Dumped kept = dump_kept(root, bytes, out, options, budget);
            kept.answer = verdict.answer;
            kept.odd_count = verdict.odd_count;
            kept.findings = std::move(verdict.findings);
            return kept;
        }
    }
    Dumped dumped = dump_entries(root, bytes, out, options, std::move(dropped), budget);
    // Only `verify` counts the comparisons of a reader, so only it has found them too many.
    if (are_read_over && dumped.answer != Answer::unsafe) {
        dumped.answer = Answer::unsafe;
        dumped.findings.push_back(verdict.findings.back());
    }
    return dumped;
}

}  // namespace sml::inspect
