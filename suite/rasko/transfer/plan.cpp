#include "suite/rasko/transfer/plan.h"

#include "suite/patients/files/filefamily.h"
#include "suite/rasko/transfer/channel.h"
#include "suite/rasko/transfer/texts.h"
#include "suite/rasko/transfer/untrusted.h"

#include <set>

namespace
{
using rasko::PlannedFile;
using rasko::Refused;

bool IsSignature(std::string_view text)
{
    return (text.size() == 32 || text.size() == 128) &&
           text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

// Of the folder itself, whatever the grammar of names lets its wildcards stand for.
bool IsPlainName(std::string_view name)
{
    if (name.empty() || name.size() > 200 || name.back() == '.' || name.back() == ' ' ||
        name.find_first_of("/\\:*?\"<>|") != std::string_view::npos)
        return false;
    for (const char c : name)
        if (static_cast<unsigned char>(c) < 0x20)
            return false;
    return true;
}

bool MayBecomeFileOf(std::string_view name, std::string_view patientId)
{
    const auto identity = IsPlainName(name) ? pat::IdentifyFile(name, patientId) : std::nullopt;
    return identity && !pat::IsRecord(identity->kind);
}

class Collector
{
public:
    explicit Collector(std::string_view patientId) : m_patientId(patientId)
    {
    }
    void Add(const std::string& serviceName, const std::string& localName, const std::string& signature)
    {
        if (!MayBecomeFileOf(localName, m_patientId))
            throw Refused(rasko::text::Fill(rasko::text::ForeignName, localName));
        if (!IsSignature(signature))
            throw Refused(rasko::text::Fill(rasko::text::NoSignature, localName));
        if (m_names.insert(pat::FoldCase(localName)).second)
            m_files.push_back({serviceName, localName, signature});
    }
    std::vector<PlannedFile> Take()
    {
        return std::move(m_files);
    }

private:
    std::string m_patientId;
    std::set<std::string> m_names;
    std::vector<PlannedFile> m_files;
};
} // namespace

namespace rasko
{
std::vector<PlannedFile> ReadUpload(std::string_view document)
{
    pugi::xml_document xml;
    const pugi::xml_node patient = LoadUntrusted(document, xml) ? xml.child("patient") : pugi::xml_node();
    if (!patient.attribute("id"))
        throw Refused(text::BadUpload);
    Collector files(patient.attribute("patientid").value());
    const auto add = [&files](const pugi::xml_node& node, const char* name, const char* signature) {
        const std::string file = node.attribute(name).value();
        if (!file.empty() && node.attribute(signature)) // without one the file was missing already
            files.Add(file, file, node.attribute(signature).value());
    };
    for (const pugi::xml_node& timepoint : patient.child("timepoints").children("timepoint"))
    {
        for (const pugi::xml_node& file : timepoint.child("Files").children("file"))
            add(file, "name", "signature");
        for (const pugi::xml_node& image : timepoint.child("images").children("image"))
        {
            add(image, "file", "signature");
            add(image, "vfile", "vsignature");
            for (const pugi::xml_node& file : image.children("file"))
                add(file, "name", "signature");
        }
    }
    return files.Take();
}

DownloadPlan ReadDownload(std::string_view manifest)
{
    pugi::xml_document xml;
    const pugi::xml_node patient = LoadUntrusted(manifest, xml) ? xml.child("patient") : pugi::xml_node();
    DownloadPlan plan{patient.attribute("frvPatId").value(), {}};
    const std::string patientId = patient.attribute("patID").value();
    if (plan.number.empty() || patientId.empty())
        throw Refused(text::BadManifest);
    Collector files(patientId);
    for (const pugi::xml_node& image : patient.child("images").children("image"))
        if (image.attribute("imageExists").as_int() == 0)
            files.Add(image.attribute("imgfilename").value(), image.attribute("finalfilename").value(),
                      image.attribute("imgfileSignature").value());
    plan.files = files.Take();
    return plan;
}
} // namespace rasko
