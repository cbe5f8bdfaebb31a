// The body of a reply, put together from the pieces in which it arrives.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace cloud
{
/// Joins the lines of a body with nothing between them; a line ends in LF or CR LF.
class ReplyBody
{
public:
    static constexpr std::size_t MaxBytes = 64 << 20; ///< longer replies are not the service's

    /// False when the body has become longer than the limit.
    bool Append(std::string_view piece);
    /// Bytes received so far, line ends included.
    std::size_t Received() const
    {
        return m_received;
    }
    /// The joined lines, once the whole reply is there. The object has no further use.
    std::string Take();

private:
    std::string m_text;
    std::size_t m_received = 0;
    bool m_carriageReturn = false; ///< the last byte so far was one; it belongs to a line end if LF follows
};
} // namespace cloud
