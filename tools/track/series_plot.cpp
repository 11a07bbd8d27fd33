#include "track/series_plot.hpp"

#include <sml/inspect/text/quote.hpp>
#include <sml/results/paths.hpp>
#include "terminal.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <string_view>

namespace bradep {

namespace {

// In pixels.
constexpr double width = 960;
constexpr double left = 72;
constexpr double right = 936;
constexpr double open_top = 84;
constexpr double open_bottom = 300;
constexpr double changes_top = 356;
constexpr double changes_bottom = 476;
constexpr double width_of_letter = 6.6;
constexpr double height_of_label = 16;

constexpr char const* style = R"(<style>
text { font: 12px system-ui, sans-serif; fill: #3b4351; }
.title { font-size: 18px; font-weight: 600; fill: #1c2330; }
.back { fill: #ffffff; } .grid { stroke: #e3e7ed; } .axis { stroke: #8a94a3; }
.open { fill: none; stroke: #2a6db0; stroke-width: 2; stroke-linejoin: round; }
.area { fill: #2a6db0; fill-opacity: .12; } .dot { fill: #2a6db0; }
.new { fill: #cf4a3c; } .returned { fill: #e39b21; } .fixed { fill: #2e9163; }
.run { fill-opacity: 0; } .run:hover { fill: #8a94a3; fill-opacity: .15; }
@media (prefers-color-scheme: dark) {
text { fill: #b9c2cf; } .title { fill: #eef2f7; }
.back { fill: #14181f; } .grid { stroke: #2b323d; } .axis { stroke: #77818f; }
.open { stroke: #6cb1f2; } .area { fill: #6cb1f2; } .dot { fill: #6cb1f2; }
.new { fill: #f0766a; } .returned { fill: #f2b950; } .fixed { fill: #56bd8b; }
}
</style>
)";

std::string text_of(double value) {
    std::array<char, 64> text{};
    auto const           end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, 1);
    return {text.data(), end.ptr};
}

// As in 12,345.
std::string text_of(std::uint64_t count) {
    std::string text = std::to_string(count);
    for (auto at = static_cast<std::ptrdiff_t>(text.size()) - 3; at > 0; at -= 3)
        text.insert(static_cast<std::size_t>(at), 1, ',');
    return text;
}

// In place of U+FFFE and U+FFFF, which no XML may have, stands U+FFFD.
std::string with_characters_of_xml(std::string text) {
    for (std::string_view const refused : {"\xEF\xBF\xBE", "\xEF\xBF\xBF"})
        for (auto at = text.find(refused); at != std::string::npos; at = text.find(refused, at))
            text.replace(at, refused.size(), "\xEF\xBF\xBD");
    return text;
}

std::string escaped(std::string_view text) {
    std::string all;
    for (char const c : with_characters_of_xml(sml::inspect::printable(text))) switch (c) {
            case '&': all += "&amp;"; break;
            case '<': all += "&lt;"; break;
            case '>': all += "&gt;"; break;
            case '"': all += "&quot;"; break;
            default: all += c;
        }
    return all;
}

// The least number with which `is_enough` is true, of 1, 2 and 5 times powers of ten.
template <class IsEnough>
std::uint64_t round_number(IsEnough const& is_enough) {
    for (std::uint64_t power = 1;; power *= 10)
        for (unsigned const digit : {1U, 2U, 5U})
            if (is_enough(digit * power)) return digit * power;
}

// The distance of four lines or fewer.
std::uint64_t step_of(std::uint64_t most) {
    return round_number([&](std::uint64_t step) { return most / step <= 4; });
}

std::string_view directory_of(std::string_view path) {
    auto const slash = path.rfind('/');
    return slash == std::string_view::npos ? std::string_view() : path.substr(0, slash);
}

// Without the last parts that all names have, such as in nights/1/log.sarif and nights/2/log.sarif.
void remove_common_ends(std::vector<std::string_view>& names) {
    auto const are_common = [&] {
        return std::ranges::all_of(names, [&](std::string_view name) {
            return sml::results::name_in(name) == sml::results::name_in(names.front()) &&
                   !directory_of(name).empty();
        });
    };
    while (names.size() > 1 && are_common())
        for (std::string_view& name : names) name = directory_of(name);
}

// Without the word that all names start with, such as in nightly-7 and nightly-8.
void remove_common_word(std::vector<std::string_view>& names) {
    constexpr std::string_view separators = "-_. ";
    auto const                 end = names.front().find_first_of(separators);
    if (names.size() == 1 || end == std::string_view::npos) return;
    auto const word = names.front().substr(0, end + 1);
    if (word.find_first_of("0123456789") != std::string_view::npos) return;
    if (std::ranges::all_of(names, [&](std::string_view name) {
            return name.starts_with(word) && name.size() > word.size();
        }))
        for (std::string_view& name : names) name.remove_prefix(word.size());
}

// Without one as in log.sarif; v1.2 has none.
std::string_view without_suffix(std::string_view name) {
    auto const dot = name.rfind('.');
    if (dot == 0 || dot == std::string_view::npos) return name;
    bool const has_digits = name.find_first_of("0123456789", dot) != std::string_view::npos;
    return has_digits ? name : name.substr(0, dot);
}

// Short names of runs.
std::vector<std::string> labels_of(std::vector<PlottedRun> const& runs) {
    constexpr std::size_t         widest = 18;
    std::vector<std::string_view> names;
    for (PlottedRun const& run : runs) {
        names.emplace_back(run.name);
        while (names.back().ends_with('/')) names.back().remove_suffix(1);
    }
    remove_common_ends(names);
    for (std::string_view& name : names) {
        name = sml::results::name_in(name);
        name = without_suffix(name);
    }
    remove_common_word(names);
    std::vector<std::string> labels;
    for (std::string_view const name : names)
        labels.push_back(cut_to_columns(sml::inspect::printable(name), widest));
    return labels;
}

class Plot {
public:
    Plot(std::ostream& out, std::vector<PlottedRun> const& runs)
        : out_(out), runs_(runs), labels_(labels_of(runs)) {
        for (PlottedRun const& run : runs) {
            most_open_ = std::max(most_open_, run.open);
            if (!has_changes(run)) continue;
            most_up_ = std::max(most_up_, run.added + run.returned);
            most_down_ = std::max(most_down_, run.fixed);
        }
        for (std::string const& label : labels_)
            widest_label_ = std::max(widest_label_, display_columns(label));
    }

    void write(std::string const& title) {
        out_ << R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 )" << text_of(width) << ' '
             << text_of(height()) << R"(" role="img">)"
             << "\n<title>" << escaped(title) << "</title>\n"
             << style << R"(<rect class="back" width="100%" height="100%"/>)" << '\n';
        put_text(left, 34, "title", title);
        put_open();
        put_changes();
        put_labels();
        put_runs();
        out_ << "</svg>\n";
    }

private:
    double slot() const { return (right - left) / static_cast<double>(runs_.size()); }
    double x(std::size_t i) const { return left + slot() * (static_cast<double>(i) + 0.5); }
    double y_of_open(std::uint64_t count) const {
        auto const share = static_cast<double>(count) / static_cast<double>(most_open_);
        return open_bottom - share * (open_bottom - open_top);
    }
    double pixels_of_changes(std::uint64_t count) const {
        return static_cast<double>(count) * (changes_bottom - changes_top) /
               static_cast<double>(most_up_ + most_down_);
    }
    double zero() const { return changes_top + pixels_of_changes(most_up_); }

    // All findings of the first run are new: that says nothing, and would dwarf the other runs.
    static bool has_changes(PlottedRun const& run) { return run.number > 1; }

    bool   is_turned() const { return width_of_labels() > slot(); }
    double width_of_labels() const {
        return width_of_letter * static_cast<double>(widest_label_ + 2);
    }
    double height() const {
        return changes_bottom + 40 + (is_turned() ? 0.82 * width_of_labels() : height_of_label);
    }

    void put_text(double at_x, double at_y, char const* kind, std::string_view text,
                  char const* more = "") {
        out_ << "<text x=\"" << text_of(at_x) << "\" y=\"" << text_of(at_y) << "\" class=\"" << kind
             << '"' << more << '>' << escaped(text) << "</text>\n";
    }
    void put_line(double at_y, char const* kind) {
        out_ << "<line x1=\"" << text_of(left) << "\" x2=\"" << text_of(right) << "\" y1=\""
             << text_of(at_y) << "\" y2=\"" << text_of(at_y) << "\" class=\"" << kind << "\"/>\n";
    }
    void put_tick(double at_y, std::uint64_t count) {
        put_line(at_y, count == 0 ? "axis" : "grid");
        put_text(left - 8, at_y + 4, "tick", text_of(count), " text-anchor=\"end\"");
    }
    void put_rectangle(char const* kind, double at_x, double at_y, double wide, double high) {
        out_ << "<rect class=\"" << kind << "\" x=\"" << text_of(at_x) << "\" y=\"" << text_of(at_y)
             << "\" width=\"" << text_of(wide) << "\" height=\"" << text_of(high) << "\"/>\n";
    }

    void put_open() {
        put_text(left, open_top - 16, "panel", "Open findings");
        auto const step = step_of(most_open_);
        for (std::uint64_t count = 0; count <= most_open_; count += step)
            put_tick(y_of_open(count), count);
        std::string points;
        for (std::size_t i = 0; i < runs_.size(); ++i)
            points += text_of(x(i)) + ',' + text_of(y_of_open(runs_[i].open)) + ' ';
        out_ << R"(<polygon class="area" points=")" << text_of(x(0)) << ',' << text_of(open_bottom)
             << ' ' << points << text_of(x(runs_.size() - 1)) << ',' << text_of(open_bottom)
             << "\"/>\n<polyline class=\"open\" points=\"" << points << "\"/>\n";
        put_dots();
    }

    // Where there is room; the last one with its number.
    void put_dots() {
        constexpr std::size_t most_dots = 60;
        std::size_t const     last = runs_.size() - 1;
        for (std::size_t i = runs_.size() > most_dots ? last : 0; i <= last; ++i)
            out_ << "<circle class=\"dot\" r=\"3\" cx=\"" << text_of(x(i)) << "\" cy=\""
                 << text_of(y_of_open(runs_[i].open)) << "\"/>\n";
        put_text(std::min(x(last) + 4, right), y_of_open(runs_[last].open) - 8, "last",
                 text_of(runs_[last].open), " text-anchor=\"end\" font-weight=\"600\"");
    }

    void put_changes() {
        double at = left;
        for (auto const& [kind, name] :
             {std::pair{"new", "New"}, {"returned", "Returned"}, {"fixed", "Fixed"}}) {
            put_rectangle(kind, at, changes_top - 26, 10, 10);
            put_text(at + 15, changes_top - 17, "panel", name);
            at += 35 + width_of_letter * static_cast<double>(std::string_view(name).size());
        }
        auto const step = step_of(std::max(most_up_, most_down_));
        put_tick(zero(), 0);
        for (std::uint64_t count = step; count <= std::max(most_up_, most_down_); count += step) {
            if (count <= most_up_) put_tick(zero() - pixels_of_changes(count), count);
            if (count <= most_down_) put_tick(zero() + pixels_of_changes(count), count);
        }
        for (std::size_t i = 0; i < runs_.size(); ++i)
            if (has_changes(runs_[i])) put_bars(i);
    }

    void put_bars(std::size_t i) {
        constexpr double  widest_bar = 32;
        double const      share = slot() < 4 ? 1 : 0.7;
        double const      wide = std::min(widest_bar, share * slot());
        double const      at = x(i) - wide / 2;
        PlottedRun const& run = runs_[i];
        double const      up = pixels_of_changes(run.added);
        double const      back = pixels_of_changes(run.returned);
        if (run.added > 0) put_rectangle("new", at, zero() - up, wide, up);
        if (run.returned > 0) put_rectangle("returned", at, zero() - up - back, wide, back);
        if (run.fixed > 0) put_rectangle("fixed", at, zero(), wide, pixels_of_changes(run.fixed));
    }

    // As many as there is room for.
    void put_labels() {
        double const wanted = is_turned() ? height_of_label : width_of_labels();
        auto const   step = round_number(
            [&](std::uint64_t runs) { return static_cast<double>(runs) * slot() >= wanted; });
        double const at = changes_bottom + 20;
        for (std::size_t i = 0; i < runs_.size(); i += step) {
            std::string const turn = " text-anchor=\"end\" transform=\"rotate(-55 " +
                                     text_of(x(i)) + ' ' + text_of(at) + ")\"";
            put_text(x(i), at, "label", labels_[i],
                     is_turned() ? turn.c_str() : " text-anchor=\"middle\"");
        }
        put_text((left + right) / 2, height() - 8, "panel", "Runs", " text-anchor=\"middle\"");
    }

    // What a viewer shows where the pointer is.
    void put_runs() {
        constexpr std::size_t most = 500;
        if (runs_.size() > most) return;
        for (std::size_t i = 0; i < runs_.size(); ++i) {
            PlottedRun const& run = runs_[i];
            out_ << "<g><title>" << escaped("run " + std::to_string(run.number) + ", " + run.name)
                 << "\nopen " << run.open << ", new " << run.added << ", returned " << run.returned
                 << ", fixed " << run.fixed << "</title>\n";
            put_rectangle("run", x(i) - slot() / 2, open_top, slot(), changes_bottom - open_top);
            out_ << "</g>\n";
        }
    }

    std::ostream&                  out_;
    std::vector<PlottedRun> const& runs_;
    std::vector<std::string>       labels_;
    std::size_t                    widest_label_ = 0;
    // Not 0, so that they can be divided by.
    std::uint64_t most_open_ = 1, most_up_ = 1, most_down_ = 1;
};

}  // namespace

void write_plot(std::ostream& out, std::string const& title, std::vector<PlottedRun> const& runs) {
    Plot(out, runs).write(title);
}

}  // namespace bradep
