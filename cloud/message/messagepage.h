// The page that shows the service's messages to the user.
#pragma once

#include <string>
#include <vector>

namespace cloud
{
struct ServiceMessage
{
    std::string text;
    std::string link; ///< without scheme
    std::string linkName;
    std::string action; ///< "stop": the user must act first
};

struct MessagePage
{
    std::string body;    ///< as it goes to the page's template, which takes from it only what is harmless
    std::string numbers; ///< of the items that must be completed
    bool stop = false;
};

MessagePage BuildMessagePage(const std::vector<ServiceMessage>& messages);
/// For a reply that cannot be read.
MessagePage MalformedMessagePage();
} // namespace cloud
