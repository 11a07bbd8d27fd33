#include <sml/schema/Checks.hpp>

#include <sml/core/define.hpp>

namespace sml::Checks {

SML_DEFINE_ENUM(T_Check_Color);
SML_DEFINE_ENUM(T_Leak_Kind);
SML_DEFINE_ENUM(T_Standard_Lib_Family);
}  // namespace sml::Checks

namespace sml::Checks::Data_Flow_Kind {

SML_DEFINE_VARIANT(T);
}  // namespace sml::Checks::Data_Flow_Kind

namespace sml::Checks {

SML_DEFINE_RECORD(T_Ovfl_Data::Linked_Ovfl_args);
SML_DEFINE_RECORD(T_Ovfl_Data::Merged_Ovfl_args);
SML_DEFINE_RECORD(T_Ovfl_Data::Single_Ovfl_args);
SML_DEFINE_VARIANT(T_Ovfl_Data);
SML_DEFINE_RECORD(T_Incorrect_Call::CALL_RTF_args);
SML_DEFINE_RECORD(T_Incorrect_Call::CALL_WNA_args);
SML_DEFINE_RECORD(T_Incorrect_Call::CALL_WTA_args);
SML_DEFINE_VARIANT(T_Incorrect_Call);
SML_DEFINE_RECORD(T_Valid_Args_Checks_Datas);
SML_DEFINE_RECORD(T_Check_Category::ABSOLUTE_ADDRESS_args);
SML_DEFINE_RECORD(T_Check_Category::ADA_EXCP_args);
SML_DEFINE_RECORD(T_Check_Category::ADA_FE_args);
SML_DEFINE_RECORD(T_Check_Category::ASSERT_QUESTION_args);
SML_DEFINE_RECORD(T_Check_Category::BF_CHECKER_WITH_PRECOMPUTED_MESSAGE_args);
SML_DEFINE_RECORD(T_Check_Category::BLOCKING_WHILE_LOCKED_args);
SML_DEFINE_RECORD(T_Check_Category::CALL_FPPF_args);
SML_DEFINE_RECORD(T_Check_Category::CALL_IRV_args);
SML_DEFINE_RECORD(T_Check_Category::CC_args);
SML_DEFINE_RECORD(T_Check_Category::CONV_OVFL_args);
SML_DEFINE_RECORD(T_Check_Category::CTR_args);
SML_DEFINE_RECORD(T_Check_Category::DATA_FLOW_FINDING_args);
SML_DEFINE_RECORD(T_Check_Category::DATA_RACE_args);
SML_DEFINE_RECORD(T_Check_Category::DATA_RACE_BIT_FIELDS_args);
SML_DEFINE_RECORD(T_Check_Category::DATA_RACE_STD_LIB_args);
SML_DEFINE_RECORD(T_Check_Category::DESTROY_LOCKED_args);
SML_DEFINE_RECORD(T_Check_Category::DRS_args);
SML_DEFINE_RECORD(T_Check_Category::DV_ASSERT_args);
SML_DEFINE_RECORD(T_Check_Category::FLOAT_ABSORPTION_args);
SML_DEFINE_RECORD(T_Check_Category::FNC_args);
SML_DEFINE_RECORD(T_Check_Category::FNR_args);
SML_DEFINE_RECORD(T_Check_Category::IDR_args);
SML_DEFINE_RECORD(T_Check_Category::LEAK_args);
SML_DEFINE_RECORD(T_Check_Category::NIP_args);
SML_DEFINE_RECORD(T_Check_Category::NIV_args);
SML_DEFINE_RECORD(T_Check_Category::NIV_STRUCT_args);
SML_DEFINE_RECORD(T_Check_Category::NNR_args);
SML_DEFINE_RECORD(T_Check_Category::NON_FINITE_INF_args);
SML_DEFINE_RECORD(T_Check_Category::NON_FINITE_NAN_args);
SML_DEFINE_RECORD(T_Check_Category::NTA_args);
SML_DEFINE_RECORD(T_Check_Category::NTC_args);
SML_DEFINE_RECORD(T_Check_Category::NTL_args);
SML_DEFINE_RECORD(T_Check_Category::OBAI_args);
SML_DEFINE_RECORD(T_Check_Category::OVFL_args);
SML_DEFINE_RECORD(T_Check_Category::PVC_args);
SML_DEFINE_RECORD(T_Check_Category::RESOURCE_args);
SML_DEFINE_RECORD(T_Check_Category::SECURITY_args);
SML_DEFINE_RECORD(T_Check_Category::SHF_args);
SML_DEFINE_RECORD(T_Check_Category::STACK_POINTER_args);
SML_DEFINE_RECORD(T_Check_Category::STD_LIB_args);
SML_DEFINE_RECORD(T_Check_Category::SUBNORMAL_args);
SML_DEFINE_RECORD(T_Check_Category::THD_args);
SML_DEFINE_RECORD(T_Check_Category::THR_args);
SML_DEFINE_RECORD(T_Check_Category::USER_GLOBAL_ASSERT_args);
SML_DEFINE_VARIANT(T_Check_Category);
SML_DEFINE_RECORD(T_A_Check);

namespace {

/// Moves the sets and maps of a check, copies everything else.
void take(T_A_Check& target, T_A_Check& source) {
    auto take_field = []<class Field>(Field& to, Field& from) {
        if constexpr (core::Set<Field> || core::Map<Field>) {
            to.clear();
            to.swap(from);
        } else {
            to = std::as_const(from);
        }
    };
    target.with_fields([&](auto&... to) {
        source.with_fields([&](auto&... from) { (take_field(to, from), ...); });
    });
}

}  // namespace

T_A_Check::T_A_Check() = default;
T_A_Check::T_A_Check(T_A_Check const& other) = default;
T_A_Check& T_A_Check::operator=(T_A_Check const& other) = default;
T_A_Check::~T_A_Check() = default;

// Required: a move empties the classifications and the located names of the source; all else of it
// stays whole, the failure and what the category holds too.
T_A_Check::T_A_Check(T_A_Check&& other) : T_A_Check() { take(*this, other); }
T_A_Check& T_A_Check::operator=(T_A_Check&& other) {
    if (this != &other) take(*this, other);
    return *this;
}

}  // namespace sml::Checks
