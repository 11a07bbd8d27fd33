#include "http.h"
#include "tcp.h"

#include <stdio.h>
#include <string.h>

static int status_of(char const *answer)
{
    int status = 0;
    sscanf(answer, "HTTP/1.1 %d", &status);
    return status;
}

/* Asks for a page. Returns its status, 0 if there is no connection. */
int http_get(char const *host, char const *path, char *answer, size_t size)
{
    struct connection *connection = tcp_connect(host, 80);
    if (connection == NULL)
        return 0;
    if (!http_send(connection, path))
        return 0;
    if (http_receive(connection, answer, size) == 0) {
        tcp_close(connection);
        return 0;
    }
    answer[size] = '\0'; /* שורה אחרונה */
    tcp_close(connection);
    return status_of(answer);
}
