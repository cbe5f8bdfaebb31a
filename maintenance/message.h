#pragma once

#include <string>
#include <vector>

namespace maint
{

/// A text of the string table and what stands at its markers "%1", "%2" and so on. An argument is shown as it
/// is, whatever it contains.
struct Message
{
    unsigned id = 0;
    std::vector<std::string> arguments;
    bool operator==(const Message&) const = default;
};

} // namespace maint
