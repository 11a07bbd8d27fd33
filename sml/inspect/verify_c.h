#ifndef SML_INSPECT_VERIFY_C_H
#define SML_INSPECT_VERIFY_C_H
/* Verifying bytes of unknown origin, for C and for whatever can call it. */

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

enum sml_inspect_answer {
    SML_INSPECT_GOOD = 0,         /* what a writer makes */
    SML_INSPECT_ODD = 1,          /* safe to read, but not what a writer makes */
    SML_INSPECT_UNSAFE = 2,       /* not to be given to a reader */
    SML_INSPECT_NO_SUCH_ROOT = 3, /* no root has this stem, or there is none given */
    SML_INSPECT_NO_MEMORY = 4,    /* the walk's own tables found no memory, or too little allowed */
    SML_INSPECT_NO_BYTES = 5      /* the bytes are null, their size is not 0 */
};

/* What a walk puts up with, and how the bytes were written; 0 stands for the default. */
struct sml_inspect_limits {
    uint32_t depth;      /* variants and containers inside one another; at most 1000 */
    uint64_t elements;   /* of all containers together */
    uint64_t text_bytes; /* of one text */
    uint64_t memory;     /* heap that reading takes at its peak, estimated, in bytes */
    uint64_t work;       /* comparisons of keys in the hash tables of a reader, estimated */
    uint64_t own_memory; /* of the walk itself: more is answered by SML_INSPECT_NO_MEMORY */

    char const* decimal_point; /* of the locale of the process that wrote the bytes; null for "." */
};

struct sml_inspect_verdict {
    uint64_t odd_count;
    uint64_t walked;   /* how many bytes were walked */
    uint64_t heap;     /* bytes of heap that reading takes at its peak, estimated */
    uint64_t work;     /* comparisons of keys in the hash tables of a reader, estimated */
    uint64_t elements; /* entries of all containers */
    uint64_t strings;  /* strings told whole */
};

/* The texts end with a zero byte and live until the function that got them returns. */
struct sml_inspect_finding {
    int32_t     is_unsafe; /* else odd */
    uint64_t    offset;    /* of the first byte concerned */
    char const* path;
    char const* expected;
    char const* found;
};

typedef void (*sml_inspect_listener)(void* context, struct sml_inspect_finding const* finding);

/* Walks `size` bytes as a value of the root with this stem and returns the answer. `limits`,
   `verdict` and `listener` may be null, and `bytes` when there are none. The listener is told of
   the first `listed` odd findings and of the unsafe one, after the walk. Keeps nothing of what it
   is given; may be called from any thread. */
__attribute__((visibility("default"))) enum sml_inspect_answer sml_inspect_verify(
    char const* stem, void const* bytes, uint64_t size, struct sml_inspect_limits const* limits,
    struct sml_inspect_verdict* verdict, uint64_t listed, sml_inspect_listener listener,
    void* context);

#ifdef __cplusplus
}
#endif

#endif
