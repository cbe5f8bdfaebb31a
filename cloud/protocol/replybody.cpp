#include "cloud/protocol/replybody.h"

#include <algorithm>
#include <utility>

namespace cloud
{
bool ReplyBody::Append(std::string_view piece)
{
    m_received += piece.size();
    if (m_received > MaxBytes)
        return false;
    while (!piece.empty())
    {
        if (m_carriageReturn && piece.front() != '\n')
            m_text += '\r';
        const std::size_t end = std::min(piece.find_first_of("\r\n"), piece.size());
        m_text.append(piece, 0, end);
        m_carriageReturn = end < piece.size() && piece[end] == '\r';
        piece.remove_prefix(std::min(end + 1, piece.size()));
    }
    return true;
}

std::string ReplyBody::Take()
{
    return std::move(m_text); // the last line may do without the LF
}
} // namespace cloud
