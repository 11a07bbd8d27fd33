#pragma once
// The golden files: small values of all roots, which together reach everything in the schema.

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

/// The file of a directory that has, for each root, the digest of the wire form in which its files
/// were written, as lines STEM DIGEST.
constexpr char const* digests_name = "digests.txt";

/// Digests of wire forms by the stems of their roots.
using Digests = std::map<std::string, std::string, std::less<>>;

/// The digests of a directory; none if it has no such file.
Digests digests_in(std::filesystem::path const& directory);

/// The digests of the present roots.
Digests digests_of_roots();

/// The content of the dump beside a golden file: its value as JSON.
std::string dump_of(File const& file);

/// The name of the file that holds the dump.
std::string dump_name(File const& file);

/// The content of a file. Throws `std::runtime_error` if it can't be read.
std::string bytes_of(std::filesystem::path const& path);

/// All golden files of a directory, sorted by name. Throws `std::runtime_error` for a file that is
/// not one.
std::vector<File> files_in(std::filesystem::path const& directory);

/// Pairs of a type and one of its arms or enumerators; -1 is the type itself. An arm counts as
/// reached with its payload, a container if it has an entry, an optional if it has a value.
using Reached = std::set<std::pair<sml::inspect::Type const*, std::int32_t>>;

/// All that can be reached from a root.
Reached reachable_from(sml::inspect::Root const& root);

/// All that a value reaches, whose bytes must be good.
Reached reached_by(sml::inspect::Root const& root, std::string_view bytes);

/// An entry of a set or map, with its offsets and that of the container's count in the bytes.
struct Entry {
    sml::inspect::Type const* table;
    std::size_t               count_at;
    std::size_t               start;
    std::size_t               key_end;
    std::size_t               end;
};

/// All entries in a value, which must not be unsafe; inner ones come before outer ones.
std::vector<Entry> entries_in(sml::inspect::Root const& root, std::string_view bytes);

/// The bytes with a copy of an entry before another entry of the same container, or after it.
std::string with_copy(std::string_view bytes, Entry const& copied, Entry const& beside,
                      bool is_behind);

/// A name for messages.
std::string name_of(Reached::value_type const& reached);

}  // namespace golden
