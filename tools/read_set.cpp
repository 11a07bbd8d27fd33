#include "read_set.hpp"

#include <sml/bindings/bindings.hpp>
#include <sml/inspect/canonical.hpp>
#include <sml/inspect/text/double_text.hpp>
#include "errors.hpp"

#include <sstream>

namespace bradep {

namespace {

using sml::inspect::Answer;

// Readers use the decimal point of this process. Bytes written with another one are converted to
// canonical bytes first, which have a dot.
void read(WalkedInput const& input, sml::inspect::Verdict const& verdict, ResultSet& set) {
    using sml::Base_Gui_Internal_Form_Datas_Aggregated_Results_T_toCxx;
    auto const& options = input.options();
    if (options.decimal_point == sml::inspect::plain_point)
        return Base_Gui_Internal_Form_Datas_Aggregated_Results_T_toCxx(set, input.bytes().data());
    if (verdict.reason_against_encoding)
        throw DamagedInput(input.name() + ": can't be read with another decimal point: " +
                           described(*verdict.reason_against_encoding));
    std::ostringstream canonical;
    write_canonical(input.root(), input.bytes(), canonical, options.walk());
    Base_Gui_Internal_Form_Datas_Aggregated_Results_T_toCxx(set, canonical.view().data());
}

}  // namespace

void read_set(WalkedInput const& input, std::ostream& err, ResultSet& set) {
    if (input.bytes().empty())
        throw DamagedInput(input.name() + ": not a result set: the file is empty");
    FindingGroups groups(input.options().listed);
    auto const    verdict = input.verify(groups);
    if (verdict.answer == Answer::unsafe)
        throw DamagedInput(input.name() + ": " + form_notice(input.bytes()) +
                           "can't be read as a result set: " + described(verdict.findings.back()));
    groups.report(err, input.name(), verdict);
    read(input, verdict, set);
}

}  // namespace bradep
