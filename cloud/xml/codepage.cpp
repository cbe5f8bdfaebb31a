#include "cloud/xml/codepage.h"

#include "cloud/xml/xmlguard.h"

#include <array>

static_assert(sizeof(wchar_t) == sizeof(char16_t));

std::wstring velWide(std::string_view text)
{
    const int nLength = static_cast<int>(text.size());
    std::wstring wide(
        static_cast<std::size_t>(::MultiByteToWideChar(CP_ACP, 0, text.data(), nLength, nullptr, 0)), L'\0');
    ::MultiByteToWideChar(CP_ACP, 0, text.data(), nLength, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

CString velNarrow(std::wstring_view text, bool* pbLossy)
{
    const int nLength = static_cast<int>(text.size());
    BOOL bLost = FALSE;
    std::string narrow(static_cast<std::size_t>(::WideCharToMultiByte(
                           CP_ACP, WC_NO_BEST_FIT_CHARS, text.data(), nLength, nullptr, 0, nullptr, nullptr)),
                       '\0');
    ::WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, text.data(), nLength, narrow.data(),
                          static_cast<int>(narrow.size()), nullptr, &bLost);
    if (pbLossy != nullptr && bLost)
        *pbLossy = true;
    return {narrow.data(), static_cast<int>(narrow.size())};
}

std::wstring velDecodeXml(std::string_view document)
{
    std::array<char16_t, 256> codePage{};
    for (std::size_t i = 0; i < codePage.size(); ++i)
    {
        const auto narrow = static_cast<char>(i);
        wchar_t wide = 0;
        ::MultiByteToWideChar(CP_ACP, 0, &narrow, 1, &wide, 1);
        codePage.at(i) = static_cast<char16_t>(wide);
    }
    const std::u16string text = cloud::DecodeXml(document, codePage.data());
    return {text.begin(), text.end()};
}
