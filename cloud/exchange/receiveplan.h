// How a downloaded record becomes part of a local patient: which timepoints are new, under which names its
// files are kept, and which of them have to be fetched. Decides only; nothing is read or written here.
#pragma once

#include "cloud/exchange/filechoice.h"
#include "cloud/exchange/record.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace cloud
{
struct LocalTimepoint
{
    std::string guid;
    std::string name;
    std::string date; ///< "yyyy-mm-dd", empty for none
    int number = 0;   ///< of its files, 0 to 99
};

struct TimepointTarget
{
    int recordNumber = 0;
    int localIndex = -1; ///< the local timepoint that it is; -1: a new one
    int localNumber = 0;
};

/// How a local file compares with the record's file of that name.
enum class LocalFile
{
    Absent,
    Same,  ///< has the signature
    Older, ///< another content, written before the record was last updated
    Newer  ///< another content, and not older
};
using LocalFileQuery = std::function<LocalFile(const std::string& name, const std::string& signature)>;

enum class PlanFault
{
    None,
    NoPatientId,     ///< or one that file names cannot be told by
    TimepointNumber, ///< missing, not a number of 0 to 99, or twice
    TooManyTimepoints,
    FileName ///< leaves the folder, is a device, or belongs to another patient or timepoint
};

/// An image that the local timepoint holds when the transfer is done.
struct PlannedImage
{
    std::size_t timepoint = 0; ///< index into the record's timepoints
    int group = 0;
    char type = 0;
    const RecordImage* source = nullptr;
};

struct ReceivePlan
{
    PlanFault fault = PlanFault::None;
    std::string faultText;                ///< the name or number that is at fault
    std::vector<TimepointTarget> targets; ///< one for each of the record's timepoints
    std::vector<ManifestFile> files;
    std::vector<PlannedImage> images;
    std::vector<std::string> unsignedFiles; ///< cannot be checked, so they are left out
};

/// Matches timepoints by GUID, else by name and day; new ones get their own number where it is free, else the
/// smallest that is. The record must outlive the plan. Linear in the record, apart from what the query costs.
ReceivePlan PlanReceive(const Record& record, const std::string& localPatientId,
                        const std::vector<LocalTimepoint>& locals, const FileChoice& choice,
                        const LocalFileQuery& localFile);

/// Whether a patient can have the ID, and files be named by it.
bool IsPatientId(const std::string& id);

/// A signature in its one form, lower-case: 32 digits (MD5) or 128 (SHA-512); empty for anything else.
std::string NormalSignature(const std::string& text);

/// Group and type of an image by its file's extension (".I2A"; ".C01" stands for ".I40").
std::optional<std::pair<int, char>> ImageSlotOf(const std::string& fileName);
} // namespace cloud
