#include "tcp.h"

#include <stdlib.h>
#include <sys/socket.h>

/* Connects to a host. The caller closes the connection. */
struct connection *tcp_connect(char const *host, int port)
{
    struct connection *connection = malloc(sizeof *connection);
    if (connection == NULL)
        return NULL;
    connection->socket = socket(AF_INET, SOCK_STREAM, 0);
    if (!resolve(host, port, &connection->address))
        return NULL;
    return connection;
}

void tcp_close(struct connection *connection)
{
    shutdown(connection->socket, SHUT_RDWR);
    free(connection);
}
