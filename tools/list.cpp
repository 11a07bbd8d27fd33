#include <sml/inspect/text/quote.hpp>
#include "command.hpp"
#include "errors.hpp"
#include "query.hpp"
#include "query_files.hpp"
#include "row_output.hpp"
#include "signals.hpp"
#include "terminal.hpp"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace bradep {

namespace {

using Names = std::vector<std::string>;

struct Options : QueryOptions {
    Names      rules, levels, paths, categories, messages, keys, states;
    Names      suppressed;  // "yes" or "no"
    bool       counts = false;
    bool       tells_by_code = false;
    RowOptions rows;
};

/// Adds conditions to a query. All of them must hold.
class Conditions {
public:
    explicit Conditions(Query& query) : query_(query) {}

    /// The condition, which has one parameter, must hold for one of the values, if there are any.
    void add(std::string const& condition, Names const& values) {
        if (values.empty()) return;
        query_.sql += has_conditions_ ? " AND (" : " WHERE (";
        has_conditions_ = true;
        for (std::size_t i = 0; i < values.size(); ++i)
            query_.sql += (i > 0 ? " OR " : "") + condition;
        query_.sql += ')';
        query_.values.insert(query_.values.end(), values.begin(), values.end());
    }

private:
    Query& query_;
    bool   has_conditions_ = false;
};

Query query_of(Options const& options, std::string const& columns) {
    Query      query{"SELECT " + columns + " FROM findings", {}};
    Conditions conditions(query);
    conditions.add("level = ?", options.levels);
    conditions.add("category = ?", options.categories);
    conditions.add("fnmatch(?, rule)", options.rules);
    conditions.add("fnmatch(?, uri)", options.paths);
    conditions.add("baseline_state = ?", options.states);
    conditions.add("\"key\" = ?", options.keys);
    conditions.add("suppressed = (? = 'yes')", options.suppressed);
    conditions.add("message REGEXP ?", options.messages);
    return query;
}

/// Prints findings as compilers print theirs: "URI:LINE:COLUMN: LEVEL: MESSAGE [RULE]".
class FindingLines : public RowOutput {
public:
    static constexpr char const* columns =
        "uri, line, \"column\", level, message, rule, suppressed, baseline_state";

    explicit FindingLines(std::ostream& out) : out_(out) {}

    void begin(Names const&) override {}

    void row(sqlite3_stmt* statement) override {
        statement_ = statement;
        line_.clear();
        add(uri, "", "", "-");
        if (add(line, ":", "")) add(column, ":", "");
        add(level, ": ", ":");
        add(message, " ", "");
        add(rule, " [", "]");
        if (sqlite3_column_int(statement, suppressed) != 0) line_ += " (suppressed)";
        if (text_of(baseline_state) == "absent") line_ += " (absent)";
        out_ << line_ << '\n';
    }

private:
    enum Column { uri, line, column, level, message, rule, suppressed, baseline_state };

    std::string_view text_of(Column which) const {
        auto const* const text = sqlite3_column_text(statement_, which);
        if (text == nullptr) return {};
        auto const size = static_cast<std::size_t>(sqlite3_column_bytes(statement_, which));
        return {reinterpret_cast<char const*>(text), size};
    }

    // Adds a value between two texts, or if there is none, another text. Returns whether there is
    // one.
    bool add(Column which, char const* before, char const* behind, char const* otherwise = "") {
        std::string_view const text = text_of(which);
        if (text.empty()) {
            line_ += otherwise;
            return false;
        }
        line_ += before + sml::inspect::printable(text) + behind;
        return true;
    }

    std::ostream& out_;
    sqlite3_stmt* statement_ = nullptr;
    std::string   line_;
};

/// Takes a number from the only row.
class SingleNumber : public RowOutput {
public:
    void begin(Names const&) override {}
    void row(sqlite3_stmt* statement) override {
        number = static_cast<std::uint64_t>(sqlite3_column_int64(statement, 0));
    }

    std::uint64_t number = 0;
};

// Returns how many findings there are.
std::uint64_t print(Options const& options, sml::tables::Database& database, Streams& streams) {
    if (options.counts) {
        SingleNumber count;
        run_query(database, query_of(options, "count(*)"), count, streams);
        streams.out << count.number << '\n';
        return count.number;
    }
    bool const is_text = options.rows.format == RowFormat::text;
    Query      query = query_of(options, is_text ? FindingLines::columns : "*");
    query.sql += " ORDER BY result_set, uri, line, \"column\", length(\"key\"), \"key\"";
    if (!is_text)
        return run_query(database, query,
                         *row_output(options.rows, streams.out, terminal_columns(streams)),
                         streams);
    FindingLines lines(streams.out);
    return run_query(database, query, lines, streams);
}

ExitCode list(Options const& options, Streams& streams) {
    QueryFiles const files(options, streams);
    files.require_checks();
    sml::tables::Database database(files.sets(), Interruption::has_come());
    Interruption const    interruption;
    bool const            is_found = print(options, database, streams) > 0;
    return is_found && options.tells_by_code ? exit_found : exit_done;
}

/// An option that can be given several times, each time with one value.
CLI::Option* declare(CLI::App& app, char const* name, Names& values, char const* type,
                     std::string const& meaning) {
    return app.add_option(name, values, meaning)->type_name(type)->allow_extra_args(false);
}

void declare_conditions(CLI::App& app, Options& options) {
    declare(app, "--rule", options.rules, "GLOB", "The rule matches, as in java/*");
    declare(app, "--level", options.levels, "LEVEL", "The level")
        ->delimiter(',')
        ->check(CLI::IsMember({"none", "note", "warning", "error"}));
    declare(app, "--file", options.paths, "GLOB", "The URI matches; * matches slashes, too");
    declare(app, "--category", options.categories, "NAME", "The category")->delimiter(',');
    declare(app, "--message", options.messages, "REGEX",
            "The pattern, in the syntax of RE2, matches in the message");
    declare(app, "--key", options.keys, "URI:N", "The key");
    app.add_option("--suppressed", options.suppressed, "Only suppressed findings, or only others")
        ->type_name("yes|no")
        ->expected(1)
        ->check(CLI::IsMember({"yes", "no"}));
    declare(app, "--state", options.states, "STATE", "The baseline state")
        ->delimiter(',')
        ->check(CLI::IsMember({"new", "unchanged", "updated", "absent"}));
}

}  // namespace

Action declare_list(CLI::App& app) {
    auto options = std::make_shared<Options>();
    declare_conditions(app, *options);
    app.add_flag("--count", options->counts, "Print only how many there are");
    app.add_flag("--exit-code", options->tells_by_code, "End with 3 if there are any");
    declare_row_options(app, options->rows);
    declare_query_files(app, *options);
    app.footer(
        "Prints the findings for which all conditions hold. A condition that is given several "
        "times\n"
        "holds if one of its values does. Other formats than text have all columns of the view\n"
        "`findings`. Suppressed and absent findings are listed, too, unless --suppressed or "
        "--state\n"
        "leave them out.\n");
    return [options](Streams& streams) { return list(*options, streams); };
}

}  // namespace bradep
