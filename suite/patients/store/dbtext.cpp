#include "suite/patients/store/dbtext.h"

#include "suite/patients/store/dbexception.h"

#include <algorithm>

namespace
{
bool IsAscii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(),
                       [](char ch) { return static_cast<unsigned char>(ch) < 0x80; });
}

bool WideFrom(UINT nCodePage, std::string_view text, std::wstring& wide)
{
    const int nLength = static_cast<int>(text.size());
    const int nWide = MultiByteToWideChar(nCodePage, MB_ERR_INVALID_CHARS, text.data(), nLength, nullptr, 0);
    if (nWide == 0)
        return text.empty();
    wide.resize(static_cast<size_t>(nWide));
    MultiByteToWideChar(nCodePage, MB_ERR_INVALID_CHARS, text.data(), nLength, wide.data(), nWide);
    return true;
}

/// `pbLossy` receives whether a character had to be replaced.
std::string NarrowFrom(UINT nCodePage, const std::wstring& wide, BOOL* pbLossy)
{
    const DWORD dwFlags = pbLossy ? WC_NO_BEST_FIT_CHARS : 0;
    const int nWide = static_cast<int>(wide.size());
    const int nBytes =
        WideCharToMultiByte(nCodePage, dwFlags, wide.data(), nWide, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<size_t>(nBytes), '\0');
    WideCharToMultiByte(nCodePage, dwFlags, wide.data(), nWide, narrow.data(), nBytes, nullptr, pbLossy);
    return narrow;
}

std::string Utf8From(const std::wstring& wide)
{
    return NarrowFrom(CP_UTF8, wide, nullptr);
}

std::wstring CheckedWide(std::string_view text)
{
    std::wstring wide;
    BOOL bLossy = FALSE;
    if (!WideFrom(CP_ACP, text, wide) || NarrowFrom(CP_ACP, wide, &bLossy) != text || bLossy)
        dbCException::Throw(dbErrText,
                            CString(text.data(), static_cast<int>(std::min<size_t>(text.size(), 60))));
    return wide;
}

bool FromUtf8(std::string_view utf8, std::string& narrow)
{
    std::wstring wide;
    const bool bReadable = WideFrom(CP_UTF8, utf8, wide);
    if (!bReadable)
    {
        // Damaged bytes: show what can be shown.
        const int nLength = static_cast<int>(utf8.size());
        wide.resize(utf8.size());
        const int nWide = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), nLength, wide.data(), nLength);
        wide.resize(static_cast<size_t>(nWide));
    }
    BOOL bLossy = FALSE;
    narrow = NarrowFrom(CP_ACP, wide, &bLossy);
    return bReadable && !bLossy;
}
} // namespace

std::string dbToUtf8(std::string_view text)
{
    return IsAscii(text) ? std::string(text) : Utf8From(CheckedWide(text));
}

std::string dbFromUtf8(std::string_view utf8)
{
    if (IsAscii(utf8))
        return std::string(utf8);
    std::string narrow;
    if (!FromUtf8(utf8, narrow))
        dbCException::Throw(dbErrText, narrow.substr(0, 60).c_str());
    return narrow;
}

std::string dbFromUtf8ForDisplay(std::string_view utf8)
{
    if (IsAscii(utf8))
        return std::string(utf8);
    std::string narrow;
    FromUtf8(utf8, narrow);
    return narrow;
}

std::string dbFold(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n\f\v";
    const size_t nFirst = text.find_first_not_of(blanks);
    if (nFirst == std::string_view::npos)
        return {};
    text = text.substr(nFirst, text.find_last_not_of(blanks) - nFirst + 1);

    if (IsAscii(text))
    {
        std::string folded(text);
        for (char& ch : folded)
            if (ch >= 'A' && ch <= 'Z')
                ch = static_cast<char>(ch - 'A' + 'a');
        return folded;
    }
    std::wstring wide = CheckedWide(text);
    LCMapStringW(LOCALE_INVARIANT, LCMAP_LOWERCASE, wide.data(), static_cast<int>(wide.size()), wide.data(),
                 static_cast<int>(wide.size()));
    return Utf8From(wide);
}
