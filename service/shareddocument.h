// The shared patient record as a practice writes it, and what the service makes of it.
#pragma once

#include <pugixml.hpp>

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace svc
{
struct SharedFile
{
    std::string name, signature;
};

/// What the service reads of a shared patient record.
struct SharedDocument
{
    std::string patientGuid, patientID, last, first, note;
    std::vector<SharedFile> files; ///< those with a signature: the others were missing when it was written
};

/// Throws Failure 400 for what is no such record, has a document type, a broken signature, a name that can be
/// no file's, a file twice with different signatures, is nested too deeply or holds too much; 413 when it is
/// too large.
SharedDocument ParseSharedDocument(std::string_view xml);

/// Parses XML of a client into `document` under the same limits. Throws Failure.
void ParseUntrusted(std::string_view xml, pugi::xml_document& document);

struct StoredFile
{
    std::string guid;
    long long size = 0;
};

/// The numbers and names that the service adds to a record that is downloaded.
struct RecordIdentity
{
    std::string userGuid, number, serviceGuid, ownerGuid;
    std::string note; ///< to the recipients
};

/// The record as it is downloaded. `files` by name.
std::string BuildDownload(const std::string& sharedDocument, const RecordIdentity& identity,
                          const std::map<std::string, StoredFile>& files);

/// The document's text without declaration and indentation, in one line.
std::string ToText(const pugi::xml_document& document);
} // namespace svc
