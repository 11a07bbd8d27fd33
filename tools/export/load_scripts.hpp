#pragma once
// How other databases load an export to files.

#include <sml/inspect/type.hpp>
#include "export/row_text.hpp"
#include "export/view_rows.hpp"

#include <filesystem>
#include <string>
#include <vector>

namespace bradep {

struct SchemaFile {
    std::filesystem::path path;  ///< in the directory `schema`
    std::string           text;
    bool                  is_executable = false;
};

/// The name of the file that says that a directory is an export, and its text, which is another one
/// for each root, each format and each version of the tables.
constexpr char const* export_mark = "export.json";
std::string           mark_of(sml::inspect::Root const& root, FileFormat format);

/// All files of the directory `schema`.
std::vector<SchemaFile> schema_files(sml::inspect::Root const& root, FileFormat format);

}  // namespace bradep
