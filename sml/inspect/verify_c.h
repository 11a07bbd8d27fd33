#ifndef SML_INSPECT_VERIFY_C_H
#define SML_INSPECT_VERIFY_C_H
/* Verifying bytes of unknown origin, for C and for languages that can call C functions. */

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

enum sml_inspect_answer {
    SML_INSPECT_GOOD = 0,         /* what a writer makes */
    SML_INSPECT_ODD = 1,          /* safe to read, but not what a writer makes */
    SML_INSPECT_UNSAFE = 2,       /* not safe to read */
    SML_INSPECT_NO_SUCH_ROOT = 3, /* no root has this stem, or it is null */
    SML_INSPECT_NO_MEMORY = 4,    /* no memory is left, or more than own_memory is needed */
    SML_INSPECT_NO_BYTES = 5      /* the bytes are null, but their size is not 0 */
};

/* The limits of a walk, and how the bytes were written; 0 stands for the default. Bytes beyond a
   limit are unsafe, except for own_memory. */
struct sml_inspect_limits {
    uint32_t depth;      /* levels of variants and containers; at most 1000 */
    uint64_t elements;   /* elements and entries of all containers together */
    uint64_t text_bytes; /* bytes of one text */
    uint64_t memory;     /* bytes of a reader's heap at its peak, estimated */
    uint64_t work;       /* comparisons of keys in a reader's hash tables, estimated */
    uint64_t own_memory; /* most bytes that the call allocates; beyond it SML_INSPECT_NO_MEMORY */

    char const* decimal_point; /* of the locale of the process that wrote the bytes; null for "." */
};

struct sml_inspect_verdict {
    uint64_t odd_count; /* number of odd findings */
    uint64_t walked;    /* number of bytes walked */
    uint64_t heap;      /* bytes of a reader's heap at its peak, estimated */
    uint64_t work;      /* comparisons of keys in a reader's hash tables, estimated */
    uint64_t elements;  /* elements and entries of all containers */
    uint64_t strings;   /* definitions of strings */
};

/* The texts end with a zero byte. They and the struct live until the listener returns. */
struct sml_inspect_finding {
    int32_t     is_unsafe; /* else odd */
    uint64_t    offset;    /* of the first byte concerned */
    char const* path;
    char const* expected;
    char const* found;
};

typedef void (*sml_inspect_listener)(void* context, struct sml_inspect_finding const* finding);

/* Walks `size` bytes as a value of the root with this stem. Returns the verdict, or why there is
   none; `verdict` is filled in only if there is one. `limits`, `verdict` and `listener` may be
   null, and `bytes` if `size` is 0.

   After the walk, the listener is called with `context` for each of the first `listed` odd
   findings, by offset, and then for the unsafe one. The function keeps no pointer that it is given.
   Several threads may call it at once. */
__attribute__((visibility("default"))) enum sml_inspect_answer sml_inspect_verify(
    char const* stem, void const* bytes, uint64_t size, struct sml_inspect_limits const* limits,
    struct sml_inspect_verdict* verdict, uint64_t listed, sml_inspect_listener listener,
    void* context);

#ifdef __cplusplus
}
#endif

#endif
