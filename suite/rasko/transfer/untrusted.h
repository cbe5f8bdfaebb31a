// XML that comes from outside.
#pragma once

#include <pugixml.hpp>

#include <string_view>

namespace rasko
{
/// Parses UTF-8 text. False for text that is no XML or over 32 MB, has a document type, or is nested more
/// than 16 deep.
bool LoadUntrusted(std::string_view xml, pugi::xml_document& document);
} // namespace rasko
