#pragma once
// The runs of an imported result set as those of a log.

#include "result_set.hpp"
#include "sarif/log_source.hpp"
#include "sarif/result_json.hpp"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace bradep::sarif {

class ImportedRuns : public LogSource {
public:
    /// The set must outlive this object. A result may have texts of `most` bytes. Throws
    /// DamagedInput if the set has checks that no import has written. So does `results`.
    ImportedRuns(ResultSet const& set, std::uint64_t most);

    std::size_t  runs() const override { return runs_; }
    json::object run(std::size_t number) const override;
    void         results(std::size_t run, ResultSink const& sink) const override;

private:
    using Forms = std::vector<std::pair<std::size_t, CheckForm const*>>;  // by run

    /// Where the descriptor of a rule stands in a run.
    struct RuleAt {
        std::size_t component;  ///< 0 is the driver, 1 the first extension
        std::size_t index;
    };
    /// The descriptors of a run's rules, by component, and where each of them stands, by number.
    struct Rules {
        std::map<std::int32_t, RuleAt>     places;
        std::map<std::size_t, json::array> lists;
    };
    std::pair<Forms::const_iterator, Forms::const_iterator> forms_of(std::size_t run) const;
    More const&                                             facts_of(std::size_t run) const;
    Rules                                                   rules_of(std::size_t run) const;
    json::array  values_of(std::vector<KeptJson> const& texts) const;
    static void  refer(json::object& result, RuleAt const& rule);
    json::object driver_without_facts(std::size_t run) const;

    ResultSet const&            set_;
    Forms                       forms_;
    std::map<std::size_t, More> facts_;
    std::size_t                 runs_ = 0;
    mutable ResultJson          json_;
};

}  // namespace bradep::sarif
