// Between the system code page of every call and the UTF-16 of documents.
#pragma once

#include <afx.h>

#include <string>
#include <string_view>

std::wstring velWide(std::string_view text);
/// What the code page does not have becomes "?", and pbLossy, if given, is set.
CString velNarrow(std::wstring_view text, bool* pbLossy = nullptr);
/// A document of the service or of this module as UTF-16, without its XML declaration.
std::wstring velDecodeXml(std::string_view document);
