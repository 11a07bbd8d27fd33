#pragma once
// Writes the data of a report: the chunks that docs/design/report.md describes.

#include <report/writer/chunk_queue.hpp>
#include <report/writer/dictionary.hpp>
#include <sml/inspect/text/json_writer.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace bradep::report {

/// Columns whose values are texts.
enum class TextColumn : std::uint8_t {
    tool,
    rule,
    level,
    kind,
    category,
    class_,
    message,
    uri,
    function,
    state
};
inline constexpr std::size_t text_columns = 10;

/// A finding in the columns. Texts are their numbers, which `ReportWriter::number_of` gives.
struct FindingColumns {
    std::array<std::uint32_t, text_columns> texts{};
    std::uint32_t                           run = 0;   ///< number of its run
    std::uint32_t                           line = 0;  ///< 0 if there is none
    std::uint32_t                           column = 0;
    std::uint32_t                           identity = 0;
    bool                                    is_suppressed = false;

    std::uint32_t&       of(TextColumn which) { return texts[static_cast<std::size_t>(which)]; }
    std::uint32_t const& of(TextColumn which) const {
        return texts[static_cast<std::size_t>(which)];
    }
};

/// A result set that a report is made of.
struct ReportedSet {
    std::string   name;
    std::uint64_t bytes = 0;
};

/// A run of a series.
struct SeriesRun {
    std::int64_t number = 0;
    std::string  name;
    std::int64_t findings = 0;
    std::int64_t open = 0, added = 0, returned = 0, fixed = 0;
};

/// What stands at the start of a report.
struct Description {
    std::string                             title;
    std::vector<ReportedSet>                sets;
    std::optional<std::vector<ReportedSet>> old_sets;  ///< of a comparison
    std::optional<std::vector<SeriesRun>>   history;   ///< of a series
    bool                                    has_identities = false;
};

/// Takes findings one by one, and keeps in memory only columns and their texts. All texts are
/// UTF-8.
class ReportWriter {
public:
    /// The output must outlive this object.
    explicit ReportWriter(ChunkOutput& output) : queue_(output) {}

    std::uint32_t number_of(TextColumn column, std::string_view text) {
        return dictionary(column).number_of(text);
    }

    /// Adds a run, a JSON object, and returns its number. Runs are numbered from 0.
    std::uint32_t add_run(std::string_view json);

    /// Adds a finding; `details` is a JSON object.
    void add(FindingColumns const& finding, std::string_view details);

    /// Adds the text of a file; `uri` is how findings name it.
    void add_source(std::string_view uri, std::string_view text);
    /// The same for a file that is left out. `reason` is a few words, as in "larger than the
    /// limit".
    void skip_source(std::string_view uri, std::string_view reason);
    /// Says that sources were looked for, though there may be none.
    void looks_for_sources() { has_sources_ = true; }

    std::size_t count() const { return findings_.size(); }

    /// The files of one reason for leaving them out.
    struct SkippedFiles {
        std::uint64_t files = 0;
        std::uint32_t chunk = 0;  ///< the number of the chunk that says so
    };
    /// By reason.
    std::map<std::string, SkippedFiles> const& skipped() const { return skipped_; }

    /// Must be called last, once.
    void finish(Description const& description);

private:
    /// The columns as bytes, and the name and type of each.
    struct Columns {
        std::string                                                bytes;
        std::vector<std::pair<std::string_view, std::string_view>> types;
    };

    Dictionary& dictionary(TextColumn column) {
        return dictionaries_[static_cast<std::size_t>(column)];
    }
    void          flush_details();
    std::uint32_t add_source_chunk(std::string content);
    template <class Value>
    void        add_column(std::string_view name, Value const& value, Columns& columns) const;
    Columns     columns(bool has_identities) const;
    void        add_dictionaries(sml::inspect::JsonWriter& json) const;
    void        add_sources(sml::inspect::JsonWriter& json) const;
    std::string index(Description const& description, Columns const& columns) const;

    ChunkQueue                           queue_;
    std::array<Dictionary, text_columns> dictionaries_;
    std::vector<FindingColumns>          findings_;
    std::string                          details_;  // of the present chunk
    std::string                          runs_;
    std::uint32_t                        run_count_ = 0;
    bool                                 has_sources_ = false;
    std::uint32_t                        source_chunks_ = 0;
    std::map<std::string, std::uint32_t> sources_;  // numbers of chunks by URI
    std::map<std::string, SkippedFiles>  skipped_;
};

}  // namespace bradep::report
