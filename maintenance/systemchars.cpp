#include "maintenance/systemchars.h"

#include <windows.h>

namespace
{

class SystemChars : public maint::CharTable
{
public:
    std::size_t LengthOf(std::string_view text) const override
    {
        return text.size() > 1 && ::IsDBCSLeadByte(static_cast<BYTE>(text.front())) ? 2 : 1;
    }

    unsigned TypeOf(std::string_view character) const override
    {
        wchar_t wide[2] = {};
        WORD types[2] = {};
        const int length = ::MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, character.data(),
                                                 static_cast<int>(character.size()), wide, 2);
        if (length == 0 || !::GetStringTypeW(CT_CTYPE1, wide, length, types))
            return 0;
        return ((types[0] & C1_ALPHA) != 0 ? letter : 0U) | ((types[0] & C1_DIGIT) != 0 ? digit : 0U) |
               ((types[0] & C1_CNTRL) != 0 ? control : 0U);
    }

    char CapitalOf(char byte) const override
    {
        ::CharUpperBuffA(&byte, 1);
        return byte;
    }
};

} // namespace

const maint::CharTable& velSystemChars()
{
    static const SystemChars table;
    return table;
}
