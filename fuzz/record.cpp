// Documents of the exchange, as the service, the transfer program and the module's guard read them: what is
// accepted keeps its promises, and what is written is accepted by who reads it.
#include "cloud/xml/xmlguard.h"
#include "fuzz/check.h"
#include "service/failure.h"
#include "service/shareddocument.h"
#include "suite/rasko/transfer/channel.h"
#include "suite/rasko/transfer/plan.h"

#include <pugixml.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <numeric>
#include <string>
#include <string_view>
#include <vector>

namespace
{
bool IsPlainName(std::string_view name)
{
    return !name.empty() && name.find_first_of("/\\:*?") == std::string_view::npos && name != "." &&
           name != "..";
}

bool IsSignature(std::string_view text)
{
    return (text.size() == 32 || text.size() == 128) &&
           text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

void CheckFiles(const std::vector<rasko::PlannedFile>& files)
{
    for (const rasko::PlannedFile& file : files)
        Check(IsPlainName(file.localName) && IsSignature(file.signature));
}

void CheckTransfer(std::string_view document)
{
    try
    {
        CheckFiles(rasko::ReadUpload(document));
    }
    catch (const rasko::Refused&)
    {
    }
    try
    {
        CheckFiles(rasko::ReadDownload(document).files);
    }
    catch (const rasko::Refused&)
    {
    }
}

void CheckService(const std::string& document)
{
    try
    {
        const svc::SharedDocument shared = svc::ParseSharedDocument(document);
        std::map<std::string, svc::StoredFile> stored;
        for (const svc::SharedFile& file : shared.files)
        {
            Check(IsPlainName(file.name) && IsSignature(file.signature));
            stored[file.name] = {"{G}", 1};
        }
        const std::string record = svc::BuildDownload(document, {"{U}", "1", "{S}", "{O}", "note"}, stored);
        Check(cloud::IsXmlAcceptable(record));
        pugi::xml_document read;
        Check(read.load_string(record.c_str()));
        Check(read.select_nodes("//record/patient[@patVeltrixID]").size() == 1);
    }
    catch (const svc::Failure&)
    {
    }
}

/// Text that the module takes comes back from a document that it writes.
void CheckText(std::string_view document)
{
    std::array<char16_t, 256> codePage;
    std::iota(codePage.begin(), codePage.end(), char16_t{0});
    const std::u16string text = cloud::DecodeXml(document, codePage.data());
    if (!cloud::IsXmlText(text))
        return;
    std::wstring wide; // of 32 bits
    for (const char16_t unit : text)
        if (unit >= 0xDC00 && unit < 0xE000)
            wide.back() = 0x10000 + (wide.back() - 0xD800) * 0x400 + (unit - 0xDC00);
        else
            wide += unit;
    pugi::xml_document read;
    Check(read.load_string(("<a b=\"" + cloud::EscapeXml(text) + "\"/>").c_str()));
    Check(read.child("a").attribute("b").value() == pugi::as_utf8(wide));
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string document(reinterpret_cast<const char*>(data), size);
    CheckTransfer(document);
    CheckService(document);
    CheckText(document);
    pugi::xml_document read;
    if (cloud::IsXmlAcceptable(document) && read.load_buffer(data, size, pugi::parse_full))
        for (const pugi::xml_node& node : read.children())
            Check(node.type() != pugi::node_doctype);
    return 0;
}
