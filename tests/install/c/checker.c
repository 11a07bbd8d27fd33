/* Verifies bytes from C. */

#include <sml/inspect/verify_c.h>

#include <stdio.h>

static void report(void* context, struct sml_inspect_finding const* finding) {
    (void)context;
    printf("byte %llu at %s: expected %s, found %s\n", (unsigned long long)finding->offset,
           finding->path, finding->expected, finding->found);
}

int main(void) {
    unsigned char const bytes[] = {1, 0, 0, 0, 255, 255, 255, 255, 9, 0, 0, 0, 'a'};
    return sml_inspect_verify("String_To_StringSet_T", bytes, sizeof bytes, NULL, NULL, 1, report,
                              NULL) == SML_INSPECT_UNSAFE
               ? 0
               : 1;
}
