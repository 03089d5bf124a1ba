#include "common/CommandServer.h"

#include "platform/Sockets.h"

#include <cerrno>

CcmdServer::CcmdServer(const std::string& host, int port)
{
    connect(host, port);
}

CcmdServer::~CcmdServer()
{
    if (m_bConnected) {
        disconnect();
    }
}

bool CcmdServer::connect(const std::string& host, int port)
{
    if (m_bConnected) {
        return true;
    }
    WSADATA data;
    if (WSAStartup(514, &data) != 0) {
        return false;
    }
    m_socket = ::socket(AF_INET, SOCK_DGRAM, 0);
    if (m_socket < 0) {
        return false;
    }
    m_closed = std::make_shared<bool>(false);
    m_address.sin_family = AF_INET;
    m_address.sin_port = htons(static_cast<unsigned short>(port));
    m_address.sin_addr.s_addr = inet_addr(host.c_str());
    m_bConnected = true;
    return true;
}

bool CcmdServer::disconnect()
{
    if (!m_bConnected) {
        return true;
    }
    if (*m_closed) {
        errno = EBADF;
        return false;
    }
    *m_closed = true;
    return closesocket(m_socket) != SOCKET_ERROR;
}

bool CcmdServer::exec(const std::string& command)
{
    if (*m_closed) {
        errno = EBADF;
        return false;
    }
    const ssize_t sent = ::sendto(m_socket, command.data(), command.size(), 0,
                                  reinterpret_cast<const sockaddr*>(&m_address), sizeof m_address);
    return sent != SOCKET_ERROR;
}
