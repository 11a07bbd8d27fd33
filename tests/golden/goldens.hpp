#pragma once
// The golden files: bytes of all roots, small, which together reach all that the schema has.

#include <sml/inspect/type.hpp>

#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace golden {

constexpr std::size_t most_bytes = 8192;  ///< of one file

struct File {
    std::string               name;  ///< STEM.NUMBER.bin
    sml::inspect::Root const* root;
    std::string               bytes;
};

/// The file of a directory that holds, for each root, the digest of the wire form that the root's
/// files were written in: lines STEM DIGEST.
constexpr char const* digests_name = "digests.txt";

/// Digests of wire forms by the stems of their roots.
using Digests = std::map<std::string, std::string, std::less<>>;

/// Those that a directory holds; none where it has no such file.
Digests digests_in(std::filesystem::path const& directory);

/// Those of the roots as they are.
Digests digests_of_roots();

/// What stands beside a golden file: what is in it as JSON.
std::string dump_of(File const& file);

/// The name of the file that holds the dump.
std::string dump_name(File const& file);

/// What a file holds. Throws `std::runtime_error` where it can't be read.
std::string bytes_of(std::filesystem::path const& path);

/// All golden files of a directory by name. Throws `std::runtime_error` for what is none.
std::vector<File> files_in(std::filesystem::path const& directory);

/// Types, and arms and enumerators of types; -1 is the type itself. An arm is reached with its
/// payload; a container is reached when it has an entry, an optional when it has a value.
using Reached = std::set<std::pair<sml::inspect::Type const*, std::int32_t>>;

/// All that can be reached from a root.
Reached reachable_from(sml::inspect::Root const& root);

/// What a good value reaches.
Reached reached_by(sml::inspect::Root const& root, std::string_view bytes);

/// An entry of a set or table: where it and its table's count stand in the bytes.
struct Entry {
    sml::inspect::Type const* table;
    std::size_t               count_at;
    std::size_t               start;
    std::size_t               key_end;
    std::size_t               end;
};

/// All of them in a value that is not unsafe, the inner ones before the outer ones.
std::vector<Entry> entries_in(sml::inspect::Root const& root, std::string_view bytes);

/// The bytes with an entry copied in front of another one of the same table, or behind it.
std::string with_copy(std::string_view bytes, Entry const& copied, Entry const& beside,
                      bool is_behind);

/// As a person names it.
std::string name_of(Reached::value_type const& reached);

}  // namespace golden
