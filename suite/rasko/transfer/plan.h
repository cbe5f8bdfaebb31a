// What the data of a task asks for: the files of an upload or a download.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace rasko
{
struct PlannedFile
{
    std::string serviceName; ///< at the service
    std::string localName;   ///< in the practice's working folder; a plain file name
    std::string signature;   ///< lower-case, 32 or 128 digits
};

struct DownloadPlan
{
    std::string number; ///< of the record at the service
    std::vector<PlannedFile> files;
};

/// The files that a shared patient record lists with a signature, each once. Throws Refused.
std::vector<PlannedFile> ReadUpload(std::string_view document);

/// The files that a manifest wants fetched. Every name has to be one of the manifest's patient, and no record
/// of the practice's own. Throws Refused.
DownloadPlan ReadDownload(std::string_view manifest);
} // namespace rasko
