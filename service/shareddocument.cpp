#include "service/shareddocument.h"

#include "service/failure.h"
#include "service/secrets.h"
#include "service/text.h"

#include <cstdio>
#include <sstream>

namespace
{
constexpr std::size_t LargestDocument = 16U << 20;
constexpr int DeepestNesting = 16;
constexpr std::size_t MostNodes = 500000;
constexpr int MostAttributes = 64; // of one element, as who downloads it takes
constexpr std::size_t MostFiles = 100000;
constexpr std::size_t LongestFileName = 255, LongestName = 200, LongestNote = 64U << 10;

// The parser lets an attribute be there twice, which others take for no XML.
void RefuseOddAttributes(const pugi::xml_node& node)
{
    int count = 0;
    for (const pugi::xml_attribute& attribute : node.attributes())
        if (++count > MostAttributes || node.attribute(attribute.name()) != attribute)
            throw svc::Failure(400, "An element has too many attributes, or one twice.");
}

void RefuseDeepOrLarge(const pugi::xml_document& document)
{
    std::size_t nodes = 0;
    int depth = 0;
    pugi::xml_node node = document.first_child();
    while (node)
    {
        RefuseOddAttributes(node);
        if (++nodes > MostNodes || node.type() == pugi::node_doctype)
            throw svc::Failure(400, "The document holds too much, or a document type.");
        if (node.first_child())
        {
            if (++depth > DeepestNesting)
                throw svc::Failure(400, "The document is nested too deeply.");
            node = node.first_child();
            continue;
        }
        while (node && !node.next_sibling())
        {
            node = node.parent();
            if (!node || node == document)
                return;
            --depth;
        }
        node = node.next_sibling();
    }
}

bool CanBeFileName(std::string_view name)
{
    return !name.empty() && name.size() <= LongestFileName && name.front() != '.' && name.back() != '.' &&
           name.back() != ' ' && name.find_first_of("/\\:*?\"<>|") == std::string_view::npos &&
           svc::IsCleanText(name) && name.find_first_of("\t\r\n") == std::string_view::npos;
}

class FileCollector
{
public:
    explicit FileCollector(std::vector<svc::SharedFile>& files) : m_files(files)
    {
    }
    void Add(const char* name, const char* signature)
    {
        if (!*name || !*signature)
            return;
        if (!CanBeFileName(name) || !svc::IsSignature(signature))
            throw svc::Failure(400, "A file's name or signature is not valid.");
        const auto [place, added] = m_signatures.emplace(name, signature);
        if (!added && place->second != signature)
            throw svc::Failure(400, "A file is listed twice with different signatures.");
        if (added)
            m_files.push_back({name, signature});
        if (m_files.size() > MostFiles)
            throw svc::Failure(413, "The record has too many files.");
    }

private:
    std::vector<svc::SharedFile>& m_files;
    std::map<std::string, std::string> m_signatures;
};

// "%m/%d/%Y" to "%Y-%m-%d"; empty when it is no date.
std::string ServiceDate(const char* date)
{
    int month = 0, day = 0, year = 0;
    if (std::sscanf(date, "%2d/%2d/%4d", &month, &day, &year) != 3) // NOLINT(cert-err34-c): limited widths
        return {};
    char text[32];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d", year, month, day);
    return text;
}

// The index that ends a timepoint's base file name; -1 when it has none.
int TimepointNumber(std::string_view base)
{
    const auto digit = [&](std::size_t fromEnd) {
        const char c = base.size() >= fromEnd ? base[base.size() - fromEnd] : ' ';
        return c >= '0' && c <= '9' ? c - '0' : -1;
    };
    return digit(1) < 0 || digit(2) < 0 ? -1 : digit(2) * 10 + digit(1);
}

void Set(pugi::xml_node node, const char* name, const char* value)
{
    if (*value)
        node.append_attribute(name) = value;
}

class DownloadBuilder
{
public:
    explicit DownloadBuilder(const std::map<std::string, svc::StoredFile>& files) : m_files(files)
    {
    }

    void AddTimepoint(pugi::xml_node timepoints, const pugi::xml_node& source) const
    {
        pugi::xml_node timepoint = timepoints.append_child("Timepoint");
        Set(timepoint, "name", source.attribute("name").value());
        Set(timepoint, "tpDate", ServiceDate(source.attribute("date").value()).c_str());
        const int number = TimepointNumber(source.attribute("file").value());
        if (number >= 0)
            timepoint.append_attribute("tpNumber") = number;
        Set(timepoint, "tpGUID", source.attribute("tpGUID").value());
        for (const pugi::xml_node& file : source.child("Files").children("file"))
            AddFile(timepoint, file);
        pugi::xml_node images = timepoint.append_child("Images");
        for (const pugi::xml_node& image : source.child("images").children("image"))
            AddImage(images, image);
    }

private:
    void AddFile(pugi::xml_node parent, const pugi::xml_node& source) const
    {
        pugi::xml_node file = parent.append_child("file");
        Set(file, "name", source.attribute("name").value());
        Set(file, "hash", source.attribute("signature").value());
        Set(file, "category", source.attribute("category").value());
        const auto stored = m_files.find(source.attribute("name").value());
        if (stored == m_files.end())
            return;
        file.append_attribute("catalogGUID") = stored->second.guid.c_str();
        file.append_attribute("size") = stored->second.size;
    }

    void AddImage(pugi::xml_node images, const pugi::xml_node& source) const
    {
        pugi::xml_node image = images.append_child("image");
        for (const char* name : {"file", "signature", "title", "note", "vfile", "vsignature"})
            Set(image, name, source.attribute(name).value());
        const std::string_view file = source.attribute("file").value();
        if (file.size() >= 2)
            image.append_attribute("imageType") = std::string(file.substr(file.size() - 2)).c_str();
        const auto stored = m_files.find(std::string(file));
        if (stored != m_files.end())
        {
            image.append_attribute("imageGUID") = stored->second.guid.c_str();
            image.append_attribute("size") = stored->second.size;
        }
        const auto view = m_files.find(source.attribute("vfile").value());
        if (view != m_files.end())
            image.append_attribute("vsize") = view->second.size;
        for (const pugi::xml_node& further : source.children("file"))
            AddFile(image, further);
    }

    const std::map<std::string, svc::StoredFile>& m_files;
};
} // namespace

namespace svc
{
void ParseUntrusted(std::string_view xml, pugi::xml_document& document)
{
    if (xml.size() > LargestDocument)
        throw Failure(413, "The document is too large.");
    if (!IsCleanText(xml))
        throw Failure(400, "The document is not valid UTF-8 text.");
    if (!document.load_buffer(xml.data(), xml.size(), pugi::parse_default | pugi::parse_doctype,
                              pugi::encoding_utf8))
        throw Failure(400, "The document is not valid XML.");
    RefuseDeepOrLarge(document);
}

SharedDocument ParseSharedDocument(std::string_view xml)
{
    pugi::xml_document document;
    ParseUntrusted(xml, document);
    const pugi::xml_node patient = document.child("patient");
    SharedDocument shared;
    shared.patientGuid = patient.attribute("id").value();
    shared.patientID = patient.attribute("patientid").value();
    shared.last = patient.attribute("last").value();
    shared.first = patient.attribute("first").value();
    shared.note = patient.child("note").text().get();
    if (shared.patientGuid.empty() || shared.patientGuid.size() > 64)
        throw Failure(400, "The document is no patient record.");
    if (shared.patientID.size() > LongestName || shared.last.size() > LongestName ||
        shared.first.size() > LongestName || shared.note.size() > LongestNote)
        throw Failure(413, "A text of the record is too long.");

    FileCollector files(shared.files);
    const auto addFile = [&](const pugi::xml_node& file) {
        files.Add(file.attribute("name").value(), file.attribute("signature").value());
    };
    for (const pugi::xml_node& timepoint : patient.child("timepoints").children("timepoint"))
    {
        for (const pugi::xml_node& file : timepoint.child("Files").children("file"))
            addFile(file);
        for (const pugi::xml_node& image : timepoint.child("images").children("image"))
        {
            files.Add(image.attribute("file").value(), image.attribute("signature").value());
            files.Add(image.attribute("vfile").value(), image.attribute("vsignature").value());
            for (const pugi::xml_node& file : image.children("file"))
                addFile(file);
        }
    }
    return shared;
}

std::string BuildDownload(const std::string& sharedDocument, const RecordIdentity& identity,
                          const std::map<std::string, StoredFile>& files)
{
    pugi::xml_document source;
    ParseUntrusted(sharedDocument, source);
    const pugi::xml_node shared = source.child("patient");

    pugi::xml_document document;
    pugi::xml_node record = document.append_child("record");
    record.append_attribute("userGUID") = identity.userGuid.c_str();
    const bool animated = [&] {
        for (const auto& [name, file] : files)
            if (name.size() > 4 && (name.ends_with(".ACV") || name.ends_with(".acv")))
                return true;
        return false;
    }();
    record.append_attribute("downloadACV") = animated ? 1 : 0;

    if (!identity.note.empty())
        record.append_child("note").text() = identity.note.c_str();

    pugi::xml_node patient = record.append_child("patient");
    patient.append_attribute("patVeltrixID") = identity.number.c_str();
    patient.append_attribute("patGUID") = shared.attribute("id").value();
    patient.append_attribute("patientID") = shared.attribute("patientid").value();
    patient.append_attribute("patOwnerGUID") = identity.ownerGuid.c_str();
    patient.append_attribute("frvPatGUID") = identity.serviceGuid.c_str();
    patient.append_attribute("patfirstName") = shared.attribute("first").value();
    patient.append_attribute("patlastName") = shared.attribute("last").value();
    patient.append_attribute("patBirthdate") = shared.attribute("birthdate").value();
    patient.append_attribute("patGender") = shared.attribute("gender").value();

    pugi::xml_node timepoints = record.append_child("Timepoints");
    const DownloadBuilder builder(files);
    for (const pugi::xml_node& timepoint : shared.child("timepoints").children("timepoint"))
        builder.AddTimepoint(timepoints, timepoint);

    record.append_copy(shared).remove_attribute("patVeltrixID");
    return ToText(document);
}

std::string ToText(const pugi::xml_document& document)
{
    std::ostringstream text;
    document.save(text, "", pugi::format_raw | pugi::format_no_declaration);
    // Clients join the lines of a reply: what ends a line inside a text goes out as a reference.
    std::string line;
    for (const char c : text.str())
        line += c == '\n' ? "&#10;" : std::string(1, c);
    return line;
}
} // namespace svc
