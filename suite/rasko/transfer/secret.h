// Text that is to leave nothing behind in memory.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace rasko
{
/// Not left out by the compiler, though nobody reads the bytes any more.
inline void Overwrite(void* data, std::size_t size)
{
    volatile char* const bytes = static_cast<char*>(data);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = 0;
}

/// A password. Its bytes are in one place on the heap, which is overwritten before it is given back.
class Secret
{
public:
    Secret() = default;
    Secret(std::string_view text) : m_bytes(text.begin(), text.end())
    {
    }
    Secret(const char* text) : Secret(std::string_view(text))
    {
    }
    Secret(const Secret&) = default;
    Secret(Secret&&) noexcept = default;
    Secret& operator=(Secret other) noexcept
    {
        m_bytes.swap(other.m_bytes);
        return *this;
    }
    ~Secret()
    {
        Overwrite(m_bytes.data(), m_bytes.size());
    }

    std::string_view View() const
    {
        return {m_bytes.data(), m_bytes.size()};
    }
    bool IsEmpty() const
    {
        return m_bytes.empty();
    }

private:
    std::vector<char> m_bytes;
};

/// Overwrites a text when its scope ends. The text has to have its capacity before a secret is added.
class WipeAtEnd
{
public:
    explicit WipeAtEnd(std::string& text) : m_text(text)
    {
    }
    ~WipeAtEnd()
    {
        Overwrite(m_text.data(), m_text.size());
    }
    WipeAtEnd(const WipeAtEnd&) = delete;
    WipeAtEnd& operator=(const WipeAtEnd&) = delete;

private:
    std::string& m_text;
};
} // namespace rasko
