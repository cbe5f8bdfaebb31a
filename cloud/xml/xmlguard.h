// What a document from outside must be like before a parser sees it, and text on its way into and out of
// documents.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace cloud
{
/// The limits of every document that the module reads.
struct XmlLimits
{
    static constexpr std::size_t Bytes = 64 << 20;
    static constexpr std::size_t Elements = 1'000'000;
    static constexpr std::size_t Attributes = 64; ///< of one element
    static constexpr std::size_t Depth = 32;
    static constexpr std::size_t TextBytes = 8 << 20; ///< of one attribute or run of text
};

/// Whether a document may be parsed: within the limits, and without a document type, so that it can define no
/// entity and name no other file. Looks at markup only as far as that takes; well-formedness is the parser's
/// to judge. Linear.
bool IsXmlAcceptable(std::string_view document);

/// The document as UTF-16: UTF-8 where it is valid UTF-8, else every byte by the given code page table of 256
/// entries. An XML declaration at its start is left out, for the text no longer has the encoding that it
/// names.
std::u16string DecodeXml(std::string_view document, const char16_t* codePage);

/// Whether XML can hold the character: not the control characters but tab, LF and CR, no half of a pair.
bool IsXmlText(std::u16string_view text);

/// Text for a document in ASCII: what marks up, line ends and everything beyond become references, so that
/// the document is the same in the system's code page and in UTF-8. The text must be XML text.
std::string EscapeXml(std::u16string_view text);
} // namespace cloud
