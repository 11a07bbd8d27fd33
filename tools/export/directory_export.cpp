#include "export/directory_export.hpp"

#include <sml/tables/rows_ahead.hpp>
#include <sml/tables/sqlite/database.hpp>
#include "errors.hpp"
#include "export/load_scripts.hpp"
#include "export/view_rows.hpp"
#include "new_files.hpp"

#include <charconv>
#include <fstream>
#include <memory>
#include <sstream>
#include <string_view>
#include <system_error>
#include <utility>

namespace bradep {

using namespace sml::tables;
namespace fs = std::filesystem;

namespace {

constexpr char const* schema_directory = "schema";
constexpr char const* parts_directory = ".bradep-export";

void make_directory(fs::path const& directory) {
    std::error_code error;
    fs::create_directories(directory, error);
    if (error) cannot_write(directory, error.value());
}

void move(fs::path const& from, fs::path const& to) {
    std::error_code error;
    fs::rename(from, to, error);
    if (error) cannot_write(to, error.value());
}

/// The number of a result set: the first 53 bits of the SHA-256 in its identity. It does not depend
/// on what else is there, and JSON readers that take all numbers for doubles keep it exact.
std::int64_t number_of(std::string_view identity) {
    constexpr std::size_t digits = 14;
    constexpr int         surplus_bits = 3;                 // 14 digits have 56 bits
    auto const            start = identity.rfind(':') + 1;  // 0 where there is no colon
    auto const            text = identity.substr(start, digits);
    std::int64_t          number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number, 16);
    return number >> surplus_bits;
}

void write_text(fs::path const& path, std::string const& text, mode_t mode) {
    NewFile file(path, mode);
    file.text = text;
    file.write();
}

std::string text_of(fs::path const& path) {
    std::ifstream      file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

}  // namespace

/// The files of one result set while they are written. Unless `publish` has returned, they are
/// removed.
class DirectoryExport::Parts {
public:
    explicit Parts(fs::path const& directory)
        : directory_(directory), parts_(directory / parts_directory) {
        make_directory(parts_);
    }
    ~Parts() {
        std::error_code ignored;
        fs::remove_all(parts_, ignored);
        if (is_published_) return;
        for (auto const& [from, to] : moves_) {
            fs::remove(to, ignored);
            fs::remove(to.parent_path(), ignored);  // if it is empty
        }
    }
    Parts(Parts const&) = delete;
    Parts& operator=(Parts const&) = delete;

    /// The path of a new file or directory, which will become `target`.
    fs::path part_of(fs::path const& target) {
        moves_.emplace_back(parts_ / std::to_string(moves_.size()), target);
        return moves_.back().first;
    }

    /// Makes the parts their targets, in the order in which they were asked for. The last one only
    /// when the others are on the disk.
    void publish(DirectoryLock const& lock) {
        for (auto const& [from, to] : moves_) {
            if (to.parent_path() != directory_) make_directory(to.parent_path());
            if (&to == &moves_.back().second) lock.flush();
            move(from, to);
        }
        is_published_ = true;
    }

private:
    fs::path                                   directory_;
    fs::path                                   parts_;
    std::vector<std::pair<fs::path, fs::path>> moves_;
    bool                                       is_published_ = false;
};

DirectoryExport::DirectoryExport(fs::path directory, FileFormat format, std::ostream& err)
    : directory_(std::move(directory)), format_(format), err_(err) {
    std::error_code error;
    is_new_ = fs::create_directory(directory_, error);
    if (error) cannot_write(directory_, error.value());
    lock_.emplace(directory_);
    fs::remove_all(directory_ / parts_directory, error);  // of a process that was killed
    if (error) cannot_write(directory_ / parts_directory, error.value());
    if (!is_empty()) read_mark();
}

DirectoryExport::~DirectoryExport() {
    std::error_code ignored;
    if (is_new_) fs::remove(directory_, ignored);  // if it is empty
}

bool DirectoryExport::is_empty() const {
    std::error_code error;
    bool const      is_empty = fs::is_empty(directory_, error);
    if (error) throw IoFailure("cannot read " + directory_.string() + ": " + error.message());
    return is_empty;
}

void DirectoryExport::read_mark() {
    auto const mark = text_of(directory_ / schema_directory / export_mark);
    for (auto const& root : sml::inspect::roots())
        if (mark == mark_of(root, format_)) {
            root_ = &root;
            return;
        }
    throw DamagedInput(directory_.string() + ": is not empty, and no export to " +
                       std::string(name_of(format_)) + " by this version of the command");
}

fs::path DirectoryExport::file_of(std::string const& table, std::int64_t number) const {
    return directory_ / table / (std::to_string(number) + '.' + std::string(name_of(format_)));
}

bool DirectoryExport::add(std::shared_ptr<ResultSets const> added) {
    ResultSets const& sets = *added;
    if (root_ != nullptr && root_ != sets.schema().root)
        refuse_other_root(directory_.string(), *root_, sets);
    auto const number = number_of(sets.identity(1));
    if (has(number, sets)) return false;
    Parts parts(directory_);
    if (root_ == nullptr) write_schema(*sets.schema().root, parts);
    try {
        write_tables(sets, number, parts);
    } catch (SqlError const& error) {
        Interruption::check();
        throw IoFailure(std::string("cannot write a temporary table: ") + error.what());
    }
    parts.publish(*lock_);
    root_ = sets.schema().root;
    return true;
}

// The digest is the last cell of the only row.
bool DirectoryExport::has(std::int64_t number, ResultSets const& sets) const {
    auto const file = file_of(std::string(name_of_list), number);
    if (!fs::exists(file)) return false;
    std::string const end = format_ == FileFormat::csv ? "\"\n" : "\"}\n";
    if (!text_of(file).ends_with('"' + sets.identity(1) + end))
        throw DamagedInput(sets.set(1).name + ": " + directory_.string() +
                           " has another result set with the number " + std::to_string(number));
    return true;
}

void DirectoryExport::write_schema(sml::inspect::Root const& root, Parts& parts) {
    auto const schema = parts.part_of(directory_ / schema_directory);
    for (SchemaFile const& file : schema_files(root, format_)) {
        auto const path = schema / file.path;
        make_directory(path.parent_path());
        write_text(path, file.text, file.is_executable ? 0777 : 0666);
    }
}

void DirectoryExport::write_tables(ResultSets const& sets, std::int64_t number, Parts& parts) {
    Database    database(sets, Interruption::has_come());
    auto const  views = views_of(database);
    auto const  tables = sets.schema().tables.size();
    SetProgress progress(err_, sets.set(1), tables + views.size());
    auto const  write = [&](std::string const& name, std::vector<Column> const& columns,
                           RowStream& rows) {
        if (rows.next()) {
            RowText const format(format_, columns);
            NewFile       file(parts.part_of(file_of(name, number)));
            file.text = format.header();
            do {
                progress.at(rows.offset());
                format.append(file.text, number, rows);
                file.write_if_long();
            } while (rows.next());
            file.write();
        }
        progress.next_table();
    };
    auto const write_table = [&](Source const& table) {
        auto const& columns = table.columns();
        auto const  rows =
            rows_ahead(table.rows(1, std::vector<bool>(columns.size(), true)), columns.size());
        write(table.name(), columns, *rows);
    };
    for (Table const& table : sets.schema().tables) write_table(*source_of(sets, table));
    for (View const& view : views) write(view.name, view.columns, *rows_of(database, view));
    write_table(*list_of(sets));
}

void DirectoryExport::finish() { lock_->flush(); }

}  // namespace bradep
