#ifndef TESTS_INSPECT_VERIFY_C_CALLS_H
#define TESTS_INSPECT_VERIFY_C_CALLS_H
/* Calls of the C form that are made from C. */

#include <sml/inspect/verify_c.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What a call gave, and of the findings how many were reported and the last one. */
struct called {
    enum sml_inspect_answer    answer;
    struct sml_inspect_verdict verdict;
    int                        reported;
    int                        told_unsafe;
    uint64_t                   offset;
    char                       path[80];
    char                       expected[80];
    char                       found[80];
};

struct called call_verify(char const* stem, void const* bytes, uint64_t size,
                          struct sml_inspect_limits const* limits, uint64_t listed);

/* With nothing but the bytes. */
enum sml_inspect_answer call_verify_bare(char const* stem, void const* bytes, uint64_t size);

/* Without bytes. */
enum sml_inspect_answer call_verify_null(char const* stem, uint64_t size);

#ifdef __cplusplus
}
#endif

#endif
