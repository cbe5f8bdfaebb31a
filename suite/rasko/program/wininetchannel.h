// The way to the service through the system's HTTPS client, with its proxy settings and certificate checks.
#pragma once

#include "suite/rasko/transfer/channel.h"

#include <memory>
#include <string>

namespace rasko
{
/// Owns the session and its connection. `target` is "host" or "host:port". TLS errors are refused by the
/// system and come as Interrupted with its text; so does every failure of the connection. Whatever the other
/// side does, sending ends after twice the timeout and a second for each 8000 bytes, and a reply that is kept
/// whole after twice the timeout and a second for each 1000 bytes. Redirections are not followed. Used by the
/// thread that made it.
class WinInetChannel : public Channel
{
public:
    /// The timeout is the longest wait for connecting, for sending and for each part of a reply.
    explicit WinInetChannel(const std::string& target, unsigned timeoutMilliseconds = 30'000);
    ~WinInetChannel() override;

    Reply Post(const std::string& target, const char* contentType, std::string_view body) override;
    Reply Get(const std::string& target, const Receiver& receiver) override;

private:
    struct Handles;
    std::shared_ptr<Handles> m_handles;
};
} // namespace rasko
