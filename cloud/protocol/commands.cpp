#include "cloud/protocol/commands.h"

namespace cloud
{
std::string UrlEncode(std::string_view text)
{
    constexpr char digits[] = "0123456789abcdef";
    std::string encoded;
    encoded.reserve(text.size() + text.size() / 2);
    for (const char character : text)
    {
        const auto byte = static_cast<unsigned char>(character);
        const bool plain =
            (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9');
        if (plain)
            encoded += character;
        else if (byte == ' ')
            encoded += '+';
        else
            encoded.append({'%', digits[byte >> 4], digits[byte & 15]});
    }
    return encoded;
}

CommandLine::CommandLine(std::string_view name) : m_text("cmd=")
{
    m_text += name;
}

CommandLine& CommandLine::Add(std::string_view key, std::string_view value)
{
    m_text.append("&").append(key).append("=").append(UrlEncode(value));
    return *this;
}

CommandLine& CommandLine::Add(std::string_view key, int value)
{
    return Add(key, std::to_string(value));
}

CommandLine& CommandLine::AddPlain(std::string_view key, int value)
{
    m_text.append("&").append(key).append("=").append(std::to_string(value));
    return *this;
}

std::string LoginLine(std::string_view user, std::string_view password, int tz)
{
    return CommandLine("login").Add("Login", user).Add("password", password).AddPlain("tz", tz).Text();
}

std::string AgentName()
{
    return "VeltrixRasko/12.0.9.58";
}

std::string RequestHeaders(bool fips)
{
    std::string headers =
        "Content-Type: application/x-www-form-urlencoded\r\nUser-Agent: " + AgentName() + "\r\n";
    if (fips)
        headers += "velUseFIPS: ON\r\n";
    return headers;
}

bool IsFipsOn(std::string_view setting)
{
    return setting.size() == 2 && (setting[0] | 0x20) == 'o' && (setting[1] | 0x20) == 'n';
}

LoginReply JudgeLogin(bool done, std::string_view response)
{
    if (!done)
        return LoginReply::Refused;
    if (response.empty())
        return LoginReply::LoggedIn;
    return response.find("<message") != std::string_view::npos ? LoginReply::Message
                                                               : LoginReply::LoggedInOnce;
}
} // namespace cloud
