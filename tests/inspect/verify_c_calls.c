#include "tests/inspect/verify_c_calls.h"

#include <stdio.h>
#include <string.h>

static void listen(void* context, struct sml_inspect_finding const* finding) {
    struct called* const called = context;
    ++called->reported;
    called->unsafe_reported += finding->is_unsafe;
    called->offset = finding->offset;
    snprintf(called->path, sizeof called->path, "%s", finding->path);
    snprintf(called->expected, sizeof called->expected, "%s", finding->expected);
    snprintf(called->found, sizeof called->found, "%s", finding->found);
}

struct called call_verify(char const* stem, void const* bytes, uint64_t size,
                          struct sml_inspect_limits const* limits, uint64_t listed) {
    struct called called;
    memset(&called, 0, sizeof called);
    called.answer =
        sml_inspect_verify(stem, bytes, size, limits, &called.verdict, listed, listen, &called);
    return called;
}

enum sml_inspect_answer call_verify_bare(char const* stem, void const* bytes, uint64_t size) {
    return sml_inspect_verify(stem, bytes, size, NULL, NULL, 0, NULL, NULL);
}

enum sml_inspect_answer call_verify_null(char const* stem, uint64_t size) {
    return sml_inspect_verify(stem, NULL, size, NULL, NULL, 0, NULL, NULL);
}
