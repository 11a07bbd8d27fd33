/* A queue of messages that own their text. The defects are on purpose. */

#include <stdio.h>
#include <stdlib.h>

struct message {
    char *text;
    struct message *next;
};

static void destroy(struct message *message)
{
    free(message->text);
    free(message);
}

/* Defect: reads the next message from one that was destroyed. */
void drop_all(struct message *first)
{
    while (first != NULL) {
        destroy(first);
        first = first->next;
    }
}

/* Defect: a message with an empty text is destroyed twice. */
int deliver(struct message *message)
{
    int delivered = 1;
    if (message->text[0] == '\0') {
        destroy(message);
        delivered = 0;
    } else {
        puts(message->text);
    }
    destroy(message);
    return delivered;
}
