// The way to the service, as far as a transfer needs to know it.
#pragma once

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace rasko
{
/// No reply, or half of one: the same request may be sent again. The text says what the system said.
struct Interrupted : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

/// The reply is none that the service gives, a maintenance page for example: the request may be tried later.
/// The text is a sentence for the user.
struct Garbled : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

/// Trying again is of no use; the text is a sentence for the user.
struct Refused : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

struct Reply
{
    int status = 0;
    std::string body; ///< as it came; empty when a receiver took it
};

/// Takes a block of a reply's body; false ends the reading.
using Receiver = std::function<bool(std::string_view)>;

/// One service over HTTPS, with the session's cookie kept between requests. Used by one thread.
class Channel
{
public:
    virtual ~Channel() = default;

    /// A whole request and its whole reply. A reply that is shorter than it announced is Interrupted.
    /// `target` is path and query.
    virtual Reply Post(const std::string& target, const char* contentType, std::string_view body) = 0;
    /// With status 200 the body goes to the receiver, block by block.
    virtual Reply Get(const std::string& target, const Receiver& receiver) = 0;
};
} // namespace rasko
