#ifndef TESTS_INSPECT_VERIFY_C_CALLS_H
#define TESTS_INSPECT_VERIFY_C_CALLS_H
/* Calls of the C interface from C code. */

#include <sml/inspect/verify_c.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The results of a call, the number of findings that it reported, and the last of them. */
struct called {
    enum sml_inspect_answer    answer;
    struct sml_inspect_verdict verdict;
    int                        reported;
    int                        unsafe_reported;
    uint64_t                   offset;
    char                       path[80];
    char                       expected[80];
    char                       found[80];
};

struct called call_verify(char const* stem, void const* bytes, uint64_t size,
                          struct sml_inspect_limits const* limits, uint64_t listed);

/* Calls with a null verdict, null limits and no listener. */
enum sml_inspect_answer call_verify_bare(char const* stem, void const* bytes, uint64_t size);

/* Calls with null bytes. */
enum sml_inspect_answer call_verify_null(char const* stem, uint64_t size);

#ifdef __cplusplus
}
#endif

#endif
