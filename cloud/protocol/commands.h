// The commands of the record-sharing service: request lines, headers and what their replies mean.
#pragma once

#include <string>
#include <string_view>

namespace cloud
{
/// The status that a command must come back with to have been carried out.
inline constexpr int StatusDone = 200;

/// Form encoding, byte by byte: letters and digits stay, a blank becomes "+", every other byte "%" and two
/// lower-case hexadecimal digits.
std::string UrlEncode(std::string_view text);

/// Overwrites a text's memory and empties it; for what held a password.
void Wipe(std::string& text);

/// One request line: "cmd=NAME" and "&key=value" pairs in the order they are added, values encoded.
class CommandLine
{
public:
    explicit CommandLine(std::string_view name);

    CommandLine& Add(std::string_view key, std::string_view value);
    CommandLine& Add(std::string_view key, int value);

    const std::string& Text() const
    {
        return m_text;
    }

private:
    std::string m_text;
};

/// tz: minutes, positive west of Greenwich. The line holds the password, which nothing else in memory does
/// then: the caller wipes it.
std::string LoginLine(std::string_view user, std::string_view password, int tz);

/// "VeltrixRasko/12.0.9.58".
std::string AgentName();
/// The header block of every request, each line with its end.
std::string RequestHeaders(bool fips);
/// Whether the setting asks for FIPS: "on" in any letter case.
bool IsFipsOn(std::string_view setting);

enum class LoginReply
{
    Refused,     ///< the status was not 200
    LoggedIn,    ///< credentials are remembered
    Message,     ///< the answer to the service's message decides
    LoggedInOnce ///< credentials are not remembered
};
LoginReply JudgeLogin(bool done, std::string_view response);
} // namespace cloud
