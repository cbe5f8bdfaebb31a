#include "cloud/protocol/commands.h"

namespace cloud
{
std::string UrlEncode(std::string_view text)
{
    constexpr char digits[] = "0123456789abcdef";
    std::string encoded;
    encoded.reserve(text.size() * 3);
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

void Wipe(std::string& text)
{
    // The compiler must not take it for useless.
    volatile char* bytes = text.data();
    for (std::size_t i = 0; i < text.size(); ++i)
        bytes[i] = 0;
    text.clear();
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

std::string LoginLine(std::string_view user, std::string_view password, int tz)
{
    std::string encoded = UrlEncode(password);
    const std::string name = UrlEncode(user), zone = std::to_string(tz);
    std::string line;
    // A text that grows leaves its beginning behind.
    line.reserve(64 + name.size() + encoded.size() + zone.size());
    line.append("cmd=login&Login=")
        .append(name)
        .append("&password=")
        .append(encoded)
        .append("&tz=")
        .append(zone);
    Wipe(encoded);
    return line;
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
