#pragma once
// The sources of the findings in a report.

#include <boost/json.hpp>
#include <report/writer/report_writer.hpp>
#include <report/writer/source_directory.hpp>

#include <map>
#include <string>
#include <string_view>

namespace bradep {

/// Collects the files that results name, and adds them to a report.
class ReportedSources {
public:
    /// Notes the files of a result: of its locations, related locations, the steps of its flows,
    /// and whatever other physical locations it has.
    void note(boost::json::object const& run, boost::json::object const& result);

    /// Reads the files and adds each, or why it is left out.
    void add_to(report::ReportWriter& writer, report::SourceDirectory& directory) const;

private:
    void note_in(boost::json::object const& run, boost::json::value const& value);

    std::map<std::string, std::string> paths_;  // by URI, as the results spell it
};

}  // namespace bradep
