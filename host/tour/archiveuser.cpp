#include "host/tour/archiveuser.h"

#include "host/hostres.h"
#include "suite/patients/records/dbpatients.h"
#include "suite/util/velpath.h"

#include <fstream>
#include <iterator>

using veltest::Dialog;

namespace
{

// Controls of the system's file dialogs.
constexpr int kFileTypes = 0x470;
constexpr int kFileName = 0x47C;

void AddLine(std::string& text, const CString& line)
{
    text += std::string(line.GetString()) + "\n";
}

std::string Contents(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void ReadTimepoints(const dbCPatient& patient, tourSPatient& result)
{
    for (const patCTimepoint& timepoint : patient.GetTimepoints())
    {
        AddLine(result.basics, timepoint.GetName() + ", " + timepoint.GetDate().ToISO());
        ++result.timepoints;
        for (int group = 0; group < patCImageTypes::GROUP_COUNT; ++group)
        {
            const auto bits = static_cast<unsigned>(timepoint.GetImageBits(group));
            for (int type = 0; type < 32; ++type)
            {
                if ((bits >> type & 1) != 0)
                {
                    const CString name = timepoint.GetImageFilename(group, type);
                    result.files[name.GetString()] = Contents((velGetDataPath() + name).GetString());
                }
            }
        }
    }
}

tourSPatient Describe(const dbCPatient& patient)
{
    tourSPatient result;
    const std::string id(patient.GetID());
    const std::string given(patient.GetFirstname());
    const std::string family(patient.GetLastname());
    result.name = given + " " + family;
    result.auditName = "The patient (" + id + ") " + family + ", " + given;
    AddLine(result.basics, patient.GetID() + ": " + patient.GetFirstname() + " " + patient.GetLastname());
    ReadTimepoints(patient, result);
    for (const CString& field :
         {patient.GetGUID(), patient.GetBirthdate().ToISO(), patient.GetNickname(), patient.GetTitle(),
          patient.GetSalutation(), patient.GetEmail(), patient.GetModelNumber(), patient.GetKeywords(),
          patient.GetNotes(), patient.GetAddress(0).GetStreet(), patient.GetAddress(0).GetCity(),
          patient.GetAddress(0).GetPostalCode()})
    {
        AddLine(result.details, field);
    }
    for (const dbCPhone& phone : patient.GetPhones())
    {
        AddLine(result.details, phone.GetNumber() + " " + phone.GetType());
    }
    for (const auto kind : {dbPersonGuardian, dbPersonTreatingDoctor})
    {
        dbCPerson person;
        patient.GetPersonInfo(kind, person);
        AddLine(result.details, person.GetFirstname() + " " + person.GetLastname());
    }
    return result;
}

// Prints both only when they differ.
void ExpectSame(tourCGuide& guide, const std::string& what, const std::string& expected,
                const std::string& found)
{
    guide.Expect(expected == found,
                 expected == found ? what : what + "\nexpected:\n" + expected + "found:\n" + found);
}

} // namespace

int tourCountRows(tourCGuide& guide, int list)
{
    return static_cast<int>(guide.Child(list).Send(LVM_GETITEMCOUNT));
}

void tourShowPatient(tourCGuide& guide, const std::string& id)
{
    guide.Child(IDC_SEARCH_BY).Choose(id.empty() ? 0 : 1);
    guide.Child(IDC_SEARCH).Replace(id);
    if (!id.empty())
    {
        guide.GetScript().WaitUntil("the patient in the list",
                                    [&] { return tourCountRows(guide, IDC_PATIENTS) == 1; });
    }
    guide.GetScript().Settle(guide.GetFrame());
}

Dialog tourOpenArchiveDialog(tourCGuide& guide, int command)
{
    guide.Choose(command);
    return guide.GetScript().WaitForDialog("Archive Patient Files");
}

void tourAnswerSave(tourCGuide& guide, const std::string& name, int fileType)
{
    veltest::DialogScript& script = guide.GetScript();
    const Dialog dialog = script.WaitForDialog("Save archive file...");
    script.WaitUntil("a name is offered",
                     [&] { return dialog.Has(kFileName) && !dialog.Item(kFileName).Text().empty(); });
    script.Settle(dialog.Handle());
    if (fileType != 0)
    {
        dialog.Item(kFileTypes).Choose(fileType);
    }
    if (!name.empty())
    {
        dialog.Item(kFileName).SetText(name);
    }
    guide.Picture(dialog.Handle(), "save-file");
    dialog.Press("Save");
    dialog.WaitForClosed();
}

void tourAnswerFile(tourCGuide& guide, const Dialog& dialog, const std::string& names, const std::string& button)
{
    guide.GetScript().WaitUntil("the name field", [&] { return dialog.Has(kFileName); });
    guide.GetScript().Settle(dialog.Handle());
    dialog.Item(kFileName).SetText(names);
    guide.Picture(dialog.Handle(), "open-file");
    dialog.Press(button);
    dialog.WaitForClosed();
}

void tourAnswerOpen(tourCGuide& guide, const std::string& names)
{
    tourAnswerFile(guide, guide.GetScript().WaitForDialog("Choose archive file..."), names, "Open");
}

void tourAnswerBox(tourCGuide& guide, const std::string& text, int button, const std::string& picture,
                   const std::string& defaultButton)
{
    const Dialog box = guide.GetScript().WaitForBox();
    guide.ExpectText("question", text, box.BoxText());
    if (!defaultButton.empty())
    {
        guide.ExpectText("default button", defaultButton, box.DefaultButton());
    }
    guide.Picture(box.Handle(), picture);
    box.Press(button);
    box.WaitForClosed();
}

bool tourIsStored(tourCGuide& guide, const std::string& id)
{
    BOOL stored = FALSE;
    guide.OnUi([&] { stored = dbCPatient().Load(id.c_str()); });
    return stored != FALSE;
}

tourSPatient tourReadPatient(tourCGuide& guide, const std::string& id)
{
    tourSPatient result;
    BOOL stored = FALSE;
    guide.OnUi([&] {
        dbCPatient patient;
        stored = patient.Load(id.c_str());
        result = Describe(patient);
    });
    if (!stored)
    {
        guide.Expect(false, id + " is in the database");
    }
    return result;
}

void tourRemember(tourCGuide& guide, const std::string& id)
{
    guide.m_saved[id] = tourReadPatient(guide, id);
}

void tourExpectAsSaved(tourCGuide& guide, const std::string& id, bool whole)
{
    const tourSPatient& saved = guide.m_saved.at(id);
    const tourSPatient found = tourReadPatient(guide, id);
    ExpectSame(guide, id + " as saved: name, " + std::to_string(found.timepoints) + " timepoints",
               saved.basics, found.basics);
    if (whole)
    {
        ExpectSame(guide, id + " as saved: every other field", saved.details, found.details);
    }
    std::size_t bytes = 0;
    for (const auto& [name, contents] : found.files)
    {
        bytes += contents.size();
    }
    guide.Expect(found.files == saved.files && (found.files.empty() || bytes > 0),
                 id + " as saved: " + std::to_string(found.files.size()) + " images, " +
                     std::to_string(bytes) + " bytes");
}

tourCGuide::Event tourSavedEvent(const tourSPatient& patient)
{
    return {dbAuditArchivedPatient, patient.auditName + " data has been saved into a file (archive)"};
}

tourCGuide::Event tourLoadedEvent(const tourSPatient& patient)
{
    return {dbAuditArchivedPatient, patient.auditName + " data have been loaded from a file (archive)"};
}
