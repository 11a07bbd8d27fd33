#include <sml/schema/Critical_Section_Funtype_Base.hpp>
#include "tests/schema/tables.hpp"

#include <gtest/gtest.h>

namespace {

TEST(CriticalSectionFuntypeBase, PrintsItsNames) {
    tables::expect_enumerators<sml::Critical_Section_Funtype_Base::T>(
        {"Destroy", "Lock", "Unlock"});
}

}  // namespace
