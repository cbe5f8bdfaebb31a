// The way to the service through the system's HTTPS client, with its proxy settings and certificate checks.
#pragma once

#include "suite/rasko/transfer/channel.h"

#include <memory>
#include <string>

namespace rasko
{
/// Owns the session and its connection. `target` is "host" or "host:port". TLS errors are refused by the
/// system and come as Interrupted with its text. Used by the thread that made it.
class WinInetChannel : public Channel
{
public:
    explicit WinInetChannel(const std::string& target);
    ~WinInetChannel() override;

    Reply Post(const std::string& target, const char* contentType, std::string_view body) override;
    Reply Get(const std::string& target, const Receiver& receiver) override;

private:
    struct Handles;
    std::unique_ptr<Handles> m_handles;
};
} // namespace rasko
