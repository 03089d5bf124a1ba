#pragma once
// The Windows socket names that the command channel is written in, on the POSIX
// socket layer. WSAStartup has no counterpart here and always succeeds.

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

using SOCKET = int;
using WORD = unsigned short;
struct WSADATA
{
    WORD wVersion;
};

constexpr int SOCKET_ERROR = -1;
constexpr SOCKET INVALID_SOCKET = -1;

inline int WSAStartup(WORD version, WSADATA* data)
{
    if (data) {
        data->wVersion = version;
    }
    return 0;
}

inline int closesocket(SOCKET s)
{
    return ::close(s);
}
