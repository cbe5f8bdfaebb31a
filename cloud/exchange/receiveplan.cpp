#include "cloud/exchange/receiveplan.h"

#include "archive/files/filenames.h"
#include "archive/files/pathsafety.h"
#include "cloud/protocol/servicetime.h"
#include "suite/patients/files/filefamily.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <utility>

namespace cloud
{
namespace
{
constexpr int TimepointNumbers = 100;

/// A number of one or two digits; -1 for anything else.
int NumberOf(const std::string& text)
{
    const bool digits = !text.empty() && text.size() <= 2 &&
                        std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    return digits ? std::stoi(text) : -1;
}

std::string DayOf(const RecordTimepoint& timepoint)
{
    const auto day = ParseServiceDate(timepoint.date);
    return day ? DateText(*day) : std::string();
}

class Planner
{
public:
    Planner(const Record& record, const std::string& localId, const FileChoice& choice,
            const LocalFileQuery& localFile)
        : m_record(record), m_choice(choice), m_localFile(localFile), m_localId(localId)
    {
    }

    ReceivePlan Run(const std::vector<LocalTimepoint>& locals)
    {
        if (!IsPatientId(m_record.patientId) || !IsPatientId(m_localId))
            Fail(PlanFault::NoPatientId, m_record.patientId);
        if (Going())
            PlaceTimepoints(locals);
        for (std::size_t i = 0; i < m_record.timepoints.size() && Going(); ++i)
            TakeTimepoint(i);
        return std::move(m_plan);
    }

private:
    bool Going() const
    {
        return m_plan.fault == PlanFault::None;
    }

    void Fail(PlanFault fault, const std::string& text)
    {
        m_plan.fault = fault;
        m_plan.faultText = text;
    }

    void PlaceTimepoints(const std::vector<LocalTimepoint>& locals)
    {
        std::map<std::string, int> byGuid;
        std::multimap<std::pair<std::string, std::string>, int> byName;
        std::array<bool, TimepointNumbers> used{};
        for (std::size_t i = 0; i < locals.size(); ++i)
        {
            const int index = static_cast<int>(i);
            if (!locals[i].guid.empty())
                byGuid.emplace(arc::FoldCase(locals[i].guid), index);
            byName.emplace(std::pair(arc::FoldCase(locals[i].name), locals[i].date), index);
            used.at(static_cast<std::size_t>(locals[i].number)) = true;
        }
        std::set<int> seen, taken; // two of the record's timepoints never end in one
        for (const RecordTimepoint& timepoint : m_record.timepoints)
        {
            TimepointTarget target;
            target.recordNumber = NumberOf(timepoint.number);
            if (target.recordNumber < 0 || !seen.insert(target.recordNumber).second)
                return Fail(PlanFault::TimepointNumber, timepoint.number);
            const auto found = byGuid.find(arc::FoldCase(timepoint.guid));
            if (found != byGuid.end() && taken.insert(found->second).second)
                target.localIndex = found->second;
            m_plan.targets.push_back(target);
        }
        for (std::size_t i = 0; i < m_plan.targets.size(); ++i)
        {
            const RecordTimepoint& timepoint = m_record.timepoints[i];
            auto [next, end] = byName.equal_range({arc::FoldCase(timepoint.name), DayOf(timepoint)});
            for (; next != end && m_plan.targets[i].localIndex < 0; ++next)
            {
                if (taken.insert(next->second).second)
                    m_plan.targets[i].localIndex = next->second;
            }
        }
        for (TimepointTarget& target : m_plan.targets)
        {
            if (target.localIndex >= 0)
            {
                target.localNumber = locals[static_cast<std::size_t>(target.localIndex)].number;
                continue;
            }
            auto number = static_cast<std::size_t>(target.recordNumber);
            if (used[number])
                number = static_cast<std::size_t>(std::find(used.begin(), used.end(), false) - used.begin());
            if (number >= used.size())
                return Fail(PlanFault::TooManyTimepoints, m_record.patientId);
            used[number] = true;
            target.localNumber = static_cast<int>(number);
        }
        for (const TimepointTarget& target : m_plan.targets)
            m_numbers[target.recordNumber] = target.localNumber;
    }

    void TakeTimepoint(std::size_t index)
    {
        const RecordTimepoint& timepoint = m_record.timepoints[index];
        m_number = m_plan.targets[index].localNumber;
        for (const RecordFile& file : timepoint.files)
            TakeFile(file);
        for (const RecordImage& image : timepoint.images)
        {
            const auto slot = ImageSlotOf(image.file);
            if (!slot)
                return Fail(PlanFault::FileName, image.file);
            ManifestFile entry;
            entry.name = image.file;
            entry.signature = image.signature;
            entry.title = image.title;
            entry.note = image.note;
            entry.fileGuid = image.guid;
            if (Take(FileKind::Image, entry))
                m_plan.images.push_back({index, slot->first, slot->second, &image});
            if (!image.viewFile.empty())
            {
                entry.name = image.viewFile;
                entry.signature = image.viewSignature;
                Take(FileKind::Uncropped, entry);
            }
            for (const RecordFile& file : image.files)
                TakeFile(file);
        }
    }

    void TakeFile(const RecordFile& file)
    {
        ManifestFile entry;
        entry.name = file.name;
        entry.signature = file.signature;
        entry.catalogGuid = file.catalogGuid;
        Take(KindOfCategory(file.category), entry);
    }

    /// The name that goes with the timepoint's number here; empty for a file of none of the record's
    /// timepoints.
    std::string LocalName(const std::string& name) const
    {
        const auto identity = pat::IdentifyFile(name, m_record.patientId);
        const auto number = identity ? m_numbers.find(identity->timepoint) : m_numbers.end();
        return number == m_numbers.end()
                   ? std::string()
                   : pat::MovedFileName(name, m_record.patientId, m_localId, number->second);
    }

    /// Whether the practice has the file, or is to have it.
    bool Take(FileKind kind, ManifestFile entry)
    {
        if (!Going())
            return false;
        const auto safe = arc::SafeFileName(entry.name);
        const std::string local = safe ? LocalName(*safe) : std::string();
        const auto safeLocal = arc::SafeFileName(local);
        // A file of the timepoint's own name under another number would be taken for another timepoint's.
        if (!safeLocal || !HasNumber(local))
        {
            Fail(PlanFault::FileName, entry.name);
            return false;
        }
        if (!Wants(kind, *safeLocal) || !m_taken.insert(arc::SameFileKey(*safeLocal)).second)
            return false;
        entry.signature = NormalSignature(entry.signature);
        if (entry.signature.empty())
        {
            m_plan.unsignedFiles.push_back(entry.name);
            return false;
        }
        entry.finalName = *safeLocal;
        Add(std::move(entry));
        return true;
    }

    bool Wants(FileKind kind, const std::string& name) const
    {
        return m_choice.Takes(kind) ||
               (m_record.withAcvFiles && pat::EqualNoCase(arc::ExtensionOf(name), ".ACV"));
    }

    bool HasNumber(const std::string& local) const
    {
        std::string_view rest = std::string_view(local).substr(m_localId.size());
        if (rest.substr(0, 1) == "$")
            rest.remove_prefix(1);
        return rest.substr(0, 2) == arc::TimepointDigits(m_number);
    }

    void Add(ManifestFile entry)
    {
        entry.ownerGuid = m_record.ownerGuid;
        entry.timepointNumber = m_number;
        const LocalFile local = m_localFile(entry.finalName, entry.signature);
        entry.exists = local == LocalFile::Same || local == LocalFile::Newer;
        m_plan.files.push_back(std::move(entry));
    }

    const Record& m_record;
    const FileChoice m_choice;
    const LocalFileQuery& m_localFile;
    const std::string m_localId;
    ReceivePlan m_plan;
    std::set<std::string> m_taken;
    std::map<int, int> m_numbers; ///< the local numbers of the record's timepoints
    int m_number = 0;             ///< local one of the timepoint at work
};
} // namespace

ReceivePlan PlanReceive(const Record& record, const std::string& localPatientId,
                        const std::vector<LocalTimepoint>& locals, const FileChoice& choice,
                        const LocalFileQuery& localFile)
{
    return Planner(record, localPatientId, choice, localFile).Run(locals);
}

bool IsPatientId(const std::string& id)
{
    const auto allowed = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' ||
               c == '-';
    };
    return !id.empty() && id.size() <= 25 && std::all_of(id.begin(), id.end(), allowed) &&
           arc::SafeFileName(id);
}

std::string NormalSignature(const std::string& text)
{
    if (text.size() != 32 && text.size() != 128)
        return {};
    std::string normal;
    for (const char character : text)
    {
        const char lower =
            character >= 'A' && character <= 'F' ? static_cast<char>(character + 32) : character;
        if (!(lower >= '0' && lower <= '9') && !(lower >= 'a' && lower <= 'f'))
            return {};
        normal += lower;
    }
    return normal;
}

std::optional<std::pair<int, char>> ImageSlotOf(const std::string& fileName)
{
    const std::string extension = arc::FoldCase(arc::ExtensionOf(fileName));
    const std::string image = arc::FoldCase(std::string_view(".I"));
    if (extension == arc::FoldCase(std::string_view(".C01")))
        return std::pair(4, '0');
    if (extension.size() != 4 || extension.compare(0, 2, image) != 0 || extension[2] < '0' ||
        extension[2] > '7')
        return std::nullopt;
    const char type = extension[3];
    return std::pair(extension[2] - '0',
                     type >= 'a' && type <= 'z' ? static_cast<char>(type - 'a' + 'A') : type);
}
} // namespace cloud
