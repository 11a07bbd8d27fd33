/* Looks people up in a small address book. The defects are on purpose. */

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

struct entry {
    char const *name;
    char const *town;
    struct entry *next;
};

static struct entry *find(struct entry *book, char const *name)
{
    while (book != NULL && strcmp(book->name, name) != 0)
        book = book->next;
    return book;
}

/* Defect: the name may not be in the book. */
int same_town(struct entry *book, char const *first, char const *second)
{
    struct entry *a = find(book, first);
    struct entry *b = find(book, second);
    if (a == NULL)
        printf("%s is not in the book\n", first);
    return strcmp(a->town, b->town) == 0;
}

/* Defect: the first entry is lost when there is no memory for the second. */
struct entry *new_pair(char const *first, char const *second, char const *town)
{
    struct entry *a = malloc(sizeof *a);
    if (a == NULL)
        return NULL;
    struct entry *b = malloc(sizeof *b);
    if (b == NULL)
        return NULL;
    *b = (struct entry){second, town, NULL};
    *a = (struct entry){first, town, b};
    return a;
}
