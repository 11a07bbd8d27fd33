#include <sml/schema/Mem_Alloc_BuiltIn_Operation.hpp>
#include "tests/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

namespace {

using sml::Mem_Alloc_BuiltIn_Operation::T_can_initialize;
using sml::Mem_Alloc_BuiltIn_Operation::T_Operation;
using sml::Mem_Alloc_BuiltIn_Operation::T_stub_mem_alloc_builtin_param;

TEST(MemAllocOperation, EveryArmHasItsTagItsNameAndItsDefaultPayload) {
    tables::expect_arms<T_Operation>({{"Alloca", "'F'"},
                                      {"Calloc"},
                                      {"Malloc", "'F'"},
                                      {"New_Array_CPP"},
                                      {"New_CPP"},
                                      {"Realloc"},
                                      {"Stub", "'F'"},
                                      {"Valloc"}});
}

TEST(MemAllocOperation, CallocIsItsTagAndStubOneByteMore) {
    wire::expect(tables::with_tag<T_Operation>(1), "01000000");
    T_Operation stub;
    stub.choose<"Stub">().flag = true;
    wire::expect(stub, "06000000 'T'");
}

TEST(MemAllocOperation, FlagsOrderFalseBeforeTrue) {
    order::expect_less(T_can_initialize{false}, T_can_initialize{true});
    order::expect_equal(T_can_initialize{true}, T_can_initialize{true});
    using Parameter = T_stub_mem_alloc_builtin_param;
    order::expect_less(Parameter{false}, Parameter{true});
    order::expect_equal(Parameter{false}, Parameter{false});
    wire::expect(T_can_initialize{true}, "'T'");
    wire::expect(Parameter{true}, "'T'");
}

TEST(MemAllocOperation, OrdersByTagThenByFlag) {
    tables::expect_order_by_tag<T_Operation>();
    T_Operation a;
    T_Operation b;
    a.choose<"Malloc">();
    b.choose<"Malloc">().flag = true;
    order::expect_less(a, b);
    a.choose<"Stub">();
    b.choose<"Stub">().flag = true;
    order::expect_less(a, b);
}

}  // namespace
