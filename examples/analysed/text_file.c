/* Prints the first line of a file. The defects are on purpose. */

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { longest_line = 256 };

static void discard(char const *path, char *line)
{
    printf("%s has no line\n", path);
    free(line);
}

/* Defect: a line that was discarded is freed once more at the end. */
int print_first_line(char const *path)
{
    FILE *file = fopen(path, "r");
    if (file == NULL)
        return 0;
    int printed = 0;
    char *line = malloc(longest_line);
    if (line != NULL) {
        if (fgets(line, longest_line, file) == NULL)
            discard(path, line);
        else
            printed = fputs(line, stdout) >= 0;
    }
    free(line);
    fclose(file);
    return printed;
}

/* Defect: returns the address of a local variable. */
char const *title(char const *path)
{
    char copy[64];
    strncpy(copy, path, sizeof copy - 1);
    copy[sizeof copy - 1] = '\0';
    char *dot = strrchr(copy, '.');
    if (dot != NULL)
        *dot = '\0';
    return copy;
}
