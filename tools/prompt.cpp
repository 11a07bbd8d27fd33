#include "prompt.hpp"

#include "errors.hpp"
#include "messages.hpp"
#include "query.hpp"
#include "signals.hpp"

#include <editline/readline.h>
#include <setjmp.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace bradep {

using sml::tables::Database;

namespace {

constexpr char const* help =
    ".help               this text\n"
    ".tables             the tables and views\n"
    ".schema [TABLE]     the columns of all tables, or of one\n"
    ".format FORMAT      how rows are printed\n"
    ".quit               the end, as Ctrl-D\n"
    "All else is SQL, up to a semicolon. Ctrl-C ends a statement, or drops what was typed.\n";

std::vector<std::string> words_to_complete;

// Gives the words that start with a text, one a call; the caller frees them.
char* next_completion(char const* text, int is_continued) {
    static std::size_t next;
    if (is_continued == 0) next = 0;
    while (next < words_to_complete.size()) {
        auto const& word = words_to_complete[next++];
        if (word.starts_with(text)) return ::strdup(word.c_str());
    }
    return nullptr;
}

char** complete(char const* text, int, int) {
    ::rl_attempted_completion_over = 1;  // no names of files
    return ::rl_completion_matches(text, next_completion);
}

sigjmp_buf before_line;

extern "C" void drop_line(int) { ::siglongjmp(before_line, 1); }

/// Reads a line from the terminal, which the caller frees. Null at the end of the input. Sets
/// `is_dropped` if Ctrl-C ended it: the library that edits lines has no other way to leave it.
char* edited_line(char const* prompt, bool& is_dropped) {
    static char* typed;  // a local variable would be lost by the jump
    typed = nullptr;
    is_dropped = false;
    static void (*before)(int);
    before = SIG_DFL;
    if (::sigsetjmp(before_line, 1) == 0) {
        before = std::signal(SIGINT, drop_line);
        typed = ::readline(prompt);
    } else {
        is_dropped = true;
    }
    std::signal(SIGINT, before);
    return typed;
}

/// Lines from standard input: edited and with a history on a terminal.
class Lines {
public:
    Lines(Streams& streams, Database const& database)
        : streams_(streams), is_terminal_(&streams.in == &std::cin && ::isatty(STDIN_FILENO) != 0) {
        if (!is_terminal_) return;
        collect_words(database);
        ::rl_readline_name = const_cast<char*>("bradep");
        ::rl_attempted_completion_function = complete;
        ::using_history();
        if (char const* const home = std::getenv("HOME")) {
            history_ = std::string(home) + "/.bradep_history";
            ::read_history(history_.c_str());
        }
    }
    ~Lines() {
        if (!is_terminal_ || history_.empty()) return;
        constexpr int most = 1000;
        ::stifle_history(most);
        ::write_history(history_.c_str());
    }
    Lines(Lines const&) = delete;
    Lines& operator=(Lines const&) = delete;

    bool is_terminal() const { return is_terminal_; }

    /// The next line; none at the end. Sets `is_dropped` if Ctrl-C ended it: then it is empty, and
    /// the lines before it do not count.
    std::optional<std::string> next(char const* prompt, bool& is_dropped) {
        std::string line;
        is_dropped = false;
        if (!is_terminal_) {
            if (!std::getline(streams_.in, line)) return std::nullopt;
            return line;
        }
        streams_.out.flush();
        char* const typed = edited_line(prompt, is_dropped);
        if (is_dropped) {
            streams_.out << '\n';
            return line;
        }
        if (typed == nullptr) return std::nullopt;
        line = typed;
        std::free(typed);
        if (!line.empty()) ::add_history(line.c_str());
        return line;
    }

private:
    static void collect_words(Database const& database) {
        words_to_complete = {"SELECT",  "FROM",    "WHERE", "GROUP BY", "ORDER BY",
                             "LIMIT",   "JOIN",    "USING", "WITH",     "count(*)",
                             ".tables", ".schema", ".help", ".format",  ".quit"};
        for (auto const& name : database.tables()) words_to_complete.push_back(name);
        for (auto const& name : database.views()) words_to_complete.push_back(name);
        for (auto const& name : database.columns()) words_to_complete.push_back(name);
    }

    Streams&    streams_;
    bool        is_terminal_;
    std::string history_;
};

class Prompt {
public:
    Prompt(Database& database, RowOptions rows, Streams& streams)
        : database_(database),
          rows_(std::move(rows)),
          streams_(streams),
          lines_(streams, database) {}

    ExitCode run() {
        if (lines_.is_terminal())
            streams_.out << "Statements end with a semicolon. .help lists what else there is.\n";
        std::string statement;
        while (!is_over_) {
            bool       is_dropped = false;
            auto const line = lines_.next(statement.empty() ? "bradep> " : "   ...> ", is_dropped);
            if (!line) break;
            if (is_dropped) {
                statement.clear();
                continue;
            }
            if (is_blank(statement)) statement.clear();
            if (statement.empty() && line->starts_with('.')) {
                command(*line);
                continue;
            }
            statement += *line + '\n';
            if (sqlite3_complete(statement.c_str()) == 0) continue;
            ask(statement);
            statement.clear();
        }
        if (!is_blank(statement)) ask(statement);
        if (lines_.is_terminal()) streams_.out << '\n';
        return lines_.is_terminal() ? exit_done : code_;
    }

private:
    /// Whether there are only blanks and comments to the ends of lines.
    static bool is_blank(std::string const& sql) {
        std::istringstream lines(sql);
        for (std::string line; std::getline(lines, line);) {
            auto const start = line.find_first_not_of(" \t\r");
            if (start != std::string::npos && line.compare(start, 2, "--") != 0) return false;
        }
        return true;
    }

    void ask(std::string const& sql) {
        Interruption const interruption;
        try {
            run_statements(database_, "statement", sql, rows_, streams_);
            code_ = exit_done;
        } catch (DamagedInput const& error) {
            failed(exit_no, error.what());
        } catch (sml::inspect::BudgetExceeded const&) {
            failed(exit_usage_or_io, out_of_own_memory);
        } catch (std::exception const& error) {
            failed(exit_usage_or_io, error.what());
        }
        streams_.out.flush();
    }

    void failed(ExitCode code, std::string_view what) {
        streams_.out.flush();
        print_message(streams_.err, what);
        streams_.err.flush();
        code_ = code;
    }

    void command(std::string const& line) {
        std::istringstream words(line);
        std::string        name, argument;
        words >> name >> argument;
        if (name == ".quit" || name == ".exit") {
            is_over_ = true;
        } else if (name == ".help") {
            streams_.out << help;
        } else if (name == ".tables") {
            for (auto const& table : database_.tables()) streams_.out << table << '\n';
            for (auto const& view : database_.views()) streams_.out << view << " (view)\n";
        } else if (name == ".schema") {
            print_schema(argument);
        } else if (name == ".format") {
            if (!set_format(rows_.format, argument))
                failed(exit_no, "no such format; there are " + format_names());
        } else {
            failed(exit_no, "no such command: " + name + " (.help lists them)");
        }
    }

    void print_schema(std::string const& only) {
        auto const text = database_.schema_of(only);
        if (text.empty()) return failed(exit_no, "no such table: " + only);
        streams_.out << text;
    }

    Database&  database_;
    RowOptions rows_;
    Streams&   streams_;
    Lines      lines_;
    bool       is_over_ = false;
    ExitCode   code_ = exit_done;
};

}  // namespace

ExitCode run_prompt(Database& database, RowOptions rows, Streams& streams) {
    return Prompt(database, std::move(rows), streams).run();
}

}  // namespace bradep
