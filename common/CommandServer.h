#pragma once
// Sends a command text as one UDP datagram to a fixed peer. A sender only: it never
// receives, and a send tells nothing of the peer. What the text holds is the caller's
// business.

#include <memory>
#include <netinet/in.h>
#include <string>

class CcmdServer
{
public:
    CcmdServer() = default;
    // As the default, then connect (its result dropped).
    CcmdServer(const std::string& host, int port);
    // Copies refer to the same socket.
    CcmdServer(const CcmdServer&) = default;
    CcmdServer& operator=(const CcmdServer&) = default;
    // Disconnects when connected.
    virtual ~CcmdServer();

    bool isConnected() const { return m_bConnected; }

    // Makes the datagram socket and keeps the peer's address. The host must be a
    // dotted IPv4 address (no name look-up). Nothing reaches the peer. When already
    // connected it returns true and changes nothing, whatever host and port are given.
    bool connect(const std::string& host, int port);
    // Closes the socket; false when the close fails. The connected flag stays set, so
    // isConnected still answers true and a later connect changes nothing.
    bool disconnect();
    // Sends the command's bytes (no terminator) to the peer; false when the send fails.
    bool exec(const std::string& command);

private:
    int m_socket = 0;
    sockaddr_in m_address{};
    bool m_bConnected = false;
    // Shared by all copies: whether the socket was closed. A closed descriptor number
    // may be reused by the process for another file, so a closed socket is never
    // closed or written again (the call fails as the socket layer would report it).
    std::shared_ptr<bool> m_closed = std::make_shared<bool>(false);
};
