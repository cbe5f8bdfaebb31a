// The practice's lists: keywords, doctors, offices, statuses, insurances, options, treatments, diagnostics,
// tasks, and the audit log.

#include "tests/patients/testdatabase.h"

namespace
{
using Records = DatabaseTest;

std::vector<std::string> Words(CKeywords& keywords)
{
    std::vector<std::string> words;
    CString strWord;
    keywords.MoveFirst();
    while (keywords.GetNext(strWord))
        words.emplace_back(strWord.GetString());
    return words;
}

TEST_F(Records, KeywordsOfTwoEditorsAreMerged)
{
    CKeywords first, second;
    ASSERT_TRUE(first.Load(dbKeywordsPatient));
    for (const char* psz : {"one", "two", "three"})
        EXPECT_TRUE(first.Add(psz));
    first.Save();

    ASSERT_TRUE(first.Load(dbKeywordsPatient));
    ASSERT_TRUE(second.Load(dbKeywordsPatient));
    EXPECT_TRUE(first.Remove("ONE"));
    EXPECT_TRUE(first.Add("four"));
    EXPECT_TRUE(second.Add("Five"));
    EXPECT_TRUE(second.Remove("three"));
    EXPECT_TRUE(second.Add("three"));
    EXPECT_TRUE(second.Add("FOUR"));
    first.Save();
    second.Save();
    CKeywords merged;
    ASSERT_TRUE(merged.Load(dbKeywordsPatient));
    EXPECT_EQ(Words(merged), (std::vector<std::string>{"two", "four", "Five", "three"}));
    CKeywords images;
    ASSERT_TRUE(images.Load(dbKeywordsImage));
    EXPECT_EQ(images.GetCount(), 0);
}

TEST_F(Records, KeywordsMayBeEmptyLongOrHard)
{
    const CString strLong('x', 500);
    CKeywords keywords;
    EXPECT_FALSE(keywords.Load(2));
    EXPECT_EQ(ErrorOf([&] { keywords.Save(); }), dbErrInvalid);
    ASSERT_TRUE(keywords.Load(dbKeywordsImage));
    EXPECT_TRUE(keywords.Add(""));
    EXPECT_FALSE(keywords.Add(""));
    EXPECT_TRUE(keywords.Add(strLong));
    EXPECT_TRUE(keywords.Add(HardText()));
    EXPECT_TRUE(keywords.Add("\xC4pfel"));
    EXPECT_FALSE(keywords.Add("\xE4PFEL")) << "letter case beyond ASCII";
    EXPECT_FALSE(keywords.Remove("none"));
    keywords.Save();
    CKeywords loaded;
    ASSERT_TRUE(loaded.Load(dbKeywordsImage));
    EXPECT_EQ(Words(loaded),
              (std::vector<std::string>{"", strLong.GetString(), HardText().GetString(), "\xC4pfel"}));
}

TEST_F(Records, DoctorsAndTheirTypes)
{
    AddDoctor("zora");
    const CString strAbel = AddDoctor("Abel", "Z", FALSE);
    AddDoctor("Abel", "A");
    EXPECT_EQ(ErrorOf([] { dbCDoctor().Save(); }), dbErrInvalid);
    std::vector<std::string> names;
    const auto takeUpToIda = [](const dbSDoctorRow& row, LPVOID pNames) -> BOOL {
        static_cast<std::vector<std::string>*>(pNames)->push_back(row.last + "," + row.first);
        return row.first != "Ida";
    };
    dbCDoctors doctors;
    doctors.RegisterEnumCallback(takeUpToIda, &names);
    EXPECT_EQ(doctors.Enum(dbDoctorsByName), 3);
    doctors.Enum(dbDoctorsAsStored);
    EXPECT_EQ(names, (std::vector<std::string>{"Abel,A", "Abel,Z", "zora,Ida", "zora,Ida"}));

    dbCDoctorTypes types;
    EXPECT_TRUE(types.AddDoctorType("Dentist"));
    EXPECT_FALSE(types.AddDoctorType("DENTIST "));
    EXPECT_FALSE(types.AddDoctorType("  "));
    EXPECT_FALSE(types.ModifyDoctorType("Orthodontist", "dentist"));
    EXPECT_FALSE(types.ModifyDoctorType("nobody", "x"));
    EXPECT_TRUE(types.ModifyDoctorType("orthodontist", "Specialist"));
    types.Load();
    ASSERT_EQ(types.GetCount(), 2);
    EXPECT_EQ(types[1], "Specialist");
    dbCDoctor doctor;
    doctor.Load(strAbel);
    EXPECT_EQ(doctor.GetType(), "Specialist");
    EXPECT_TRUE(types.DeleteDoctorType("Specialist"));
    EXPECT_FALSE(types.DeleteDoctorType("Specialist"));
    doctor.Load(strAbel);
    EXPECT_EQ(doctor.GetType(), "");
}

TEST_F(Records, ADoctorWhoIsReferredToStays)
{
    const CString strDoctor = AddDoctor("Frost");
    dbCPatient patient = NewPatient("A1");
    patient.GetReferrals().AddReferralDoc(strDoctor, velCDate());
    patient.Save();
    dbCDoctor doctor;
    doctor.Load(strDoctor);
    EXPECT_EQ(ErrorOf([&] { doctor.Delete(); }), dbErrInUse);
    patient.GetReferrals().RemoveAll();
    patient.Save();
    doctor.Delete();
    EXPECT_FALSE(doctor.Load(strDoctor));
    dbCPerson gone;
    gone.SetPersonGUID(strDoctor);
    patient.SetPersonInfo(dbPersonTreatingDoctor, gone);
    EXPECT_EQ(ErrorOf([&] { patient.Save(); }), dbErrNotFound);
    patient.RemovePersonInfo(dbPersonTreatingDoctor);
    patient.GetReferrals().AddReferralDoc(strDoctor, velCDate());
    EXPECT_EQ(ErrorOf([&] { patient.Save(); }), dbErrNotFound);

    // What a transaction around it takes back is as if it had not been, for copies too.
    dbCDoctor edited, added;
    edited.Load(AddDoctor("Reed"));
    added.GetPerson().SetLastname("New");
    for (int i = 0; i < 2; ++i)
    {
        dbCDoctor copy, removed = edited;
        {
            dbCTransaction outer;
            edited.SetType("Dentist");
            edited.Save();
            added.Save();
            added.Save();
            copy = added;
            removed = edited;
            removed.Delete();
        }
        EXPECT_FALSE(doctor.Load(added.GetGUID()));
        removed.Save();
        EXPECT_EQ(ErrorOf([&] { edited.Save(); }), dbErrChangedElsewhere)
            << "changed through the other object";
        edited.Load(edited.GetGUID());
        EXPECT_EQ(edited.GetType(), "Dentist");
        copy.Save();
        copy.Delete();
    }
    added.Save();

    // A doctor of the same identity who comes back is not the one that was loaded before.
    dbCDoctor stale, again;
    stale.GetPerson().SetLastname("Stale");
    stale.Save();
    again.GetPerson() = stale.GetPerson();
    dbCDoctor(stale).Delete();
    again.Save();
    EXPECT_EQ(ErrorOf([&] { stale.Save(); }), dbErrChangedElsewhere);
}

TEST_F(Records, EmailsOfADoctorAndAroundAPatient)
{
    const CString strDoctor = AddDoctor("Frost");
    dbCDoctor before, doctor;
    before.Load(strDoctor);
    dbCPersonEmails emails;
    for (const char* psz : {"a@x.org", " ", "b@x.org ", "c@x.org"})
        emails.Add(psz);
    emails.Save(strDoctor);
    EXPECT_EQ(ErrorOf([&] { before.Save(); }), dbErrChangedElsewhere);
    EXPECT_EQ(ErrorOf([&] { emails.Save("none"); }), dbErrNotFound);
    ASSERT_TRUE(doctor.Load(strDoctor));
    EXPECT_EQ(doctor.GetPerson().GetEmail(), "a@x.org");
    doctor.GetPerson().SetEmail("d@x.org");
    doctor.Save();
    emails.LoadByPersonGUID(strDoctor);
    ASSERT_EQ(emails.GetCount(), 3);
    EXPECT_EQ(emails[0] + emails[1] + emails[2], "d@x.orgb@x.orgc@x.org");
    emails.RemoveAll();
    emails.Save(strDoctor);
    emails.LoadByPersonGUID(strDoctor);
    EXPECT_TRUE(emails.IsEmpty());

    dbCPatient patient = NewPatient("A1");
    dbCPatientEmailsContainer rows;
    EXPECT_TRUE(dbCPatientEmailsContainer::TableExists());
    rows.Add({"P", "Family", "Home", "Ms", HardText(), "Lee", "m@x.org"});
    rows.Add({"Q", "2", "3", "4", "5", "6", "7"});
    EXPECT_EQ(ErrorOf([&] { rows.Save(patient.GetGUID()); }), dbErrNotFound);
    patient.Save();
    rows.Save(patient.GetGUID());
    rows.Save(patient.GetGUID());
    ASSERT_EQ(rows.LoadByPatID(patient.GetGUID()), 2);
    const auto text = [](const dbSPatientEmail& row) {
        return row.strPersonID + row.strCategory + row.strType + row.strSalutation + row.strFirstname +
               row.strLastname + row.strAddress;
    };
    EXPECT_EQ(text(rows[0]), "PFamilyHomeMs" + HardText() + "Leem@x.org");
    EXPECT_EQ(text(rows[1]), "Q234567");
    EXPECT_EQ(rows.LoadByPatID("none"), 0);

    // What the records of patient and guardian say comes first and is not stored twice.
    dbCPerson mother;
    mother.SetFirstname("Eve");
    mother.SetLastname("Hill");
    mother.SetSalutation("Ms");
    mother.SetEmail("mother@x.org");
    patient.SetPersonInfo(dbPersonGuardian, mother);
    patient.GetPersonInfo(dbPersonGuardian, mother);
    const CString strMother = mother.GetPersonGUID();
    patient.SetEmail("own@x.org");
    patient.Save();
    emails.RemoveAll();
    emails.Add("mother@x.org");
    emails.Add("work@x.org");
    emails.Save(strMother);
    const std::vector<std::string> expected{"patient own@x.org", "guardian mother@x.org",
                                            "guardian work@x.org", "Family m@x.org", "2 7"};
    for (int i = 0; i < 2; ++i)
    {
        ASSERT_EQ(rows.LoadByPatID(patient.GetGUID()), 5);
        std::vector<std::string> found;
        for (const dbSPatientEmail& email : rows)
            found.emplace_back((email.strCategory + " " + email.strAddress).GetString());
        EXPECT_EQ(found, expected);
        EXPECT_EQ(rows[0].strPersonID + rows[1].strPersonID, patient.GetGUID() + strMother);
        EXPECT_EQ(rows[1].strSalutation + rows[1].strFirstname + rows[1].strLastname, "MsEveHill");
        rows.Save(patient.GetGUID());
    }
    EXPECT_EQ(rows.LoadOthersByPatID(patient.GetGUID()), 2);

    // A database without the tables has one address a person.
    database.Execute("DROP TABLE emails; DROP TABLE patientEmails");
    EXPECT_FALSE(dbCPersonEmails::TableExists() || dbCPatientEmailsContainer::TableExists());
    emails.LoadByPersonGUID(strMother);
    ASSERT_EQ(emails.GetCount(), 1);
    EXPECT_EQ(emails[0], "mother@x.org");
    EXPECT_EQ(rows.LoadByPatID(patient.GetGUID()) + rows.LoadOthersByPatID(patient.GetGUID()), 0);
    EXPECT_EQ(ErrorOf([&] { rows.Save(patient.GetGUID()); }), dbErrNotFound);
}

TEST_F(Records, ACatalogEntryStaysAsLongAsItsFile)
{
    dbCPatient patient = FullPatient("A1");
    const auto store = [&](const char* pszName, const char* pszGUID) {
        return ErrorOf([&] { dbCCatalogFiles::Store(patient.GetGUID(), {pszName, pszGUID, "hash"}); });
    };
    const auto stored = [&] {
        dbCCatalogFiles files;
        files.LoadByPatID(patient.GetGUID());
        std::string text;
        for (const dbSCatalogFile& file : files)
            text += (file.strName + "=" + file.strCatalogGUID + "," + file.strHash + " ").GetString();
        return text;
    };
    EXPECT_EQ(store("A100.M", "{M}"), dbErrNotFound);
    patient.Save();
    for (const char* pszName : {"A100.M", "A101.I0B.AVI", "A1$01$x"})
    {
        database.practice.WriteFile(std::string("working/") + pszName, "x");
        EXPECT_EQ(store(pszName, "{old}"), dbErrNone);
    }
    EXPECT_EQ(store("a100.m", "{M}"), dbErrNone);
    EXPECT_EQ(store("A1$01$x", "{X}"), dbErrNone);
    EXPECT_EQ(store("A1200.M", "{other}"), dbErrInvalid);
    EXPECT_EQ(store("..\\A100.M", "{other}"), dbErrInvalid);
    EXPECT_EQ(stored(), "A1$01$x={X},hash A100.M={M},hash A101.I0B.AVI={old},hash ");
    patient.SetID("ZULU");
    patient.Save();
    patient.DeleteTimepointImages(1);
    EXPECT_EQ(stored(), "ZULU$01$x={X},hash ZULU00.M={M},hash ");
    {
        dbCTransaction transaction;
        patient.DeleteTimepoint(1);
    }
    EXPECT_EQ(stored(), "ZULU$01$x={X},hash ZULU00.M={M},hash ");
    patient.DeleteTimepoint(1);
    EXPECT_EQ(stored(), "ZULU00.M={M},hash ");
    dbCPatients().DeletePatient("ZULU");
    EXPECT_EQ(stored(), "");
}

TEST_F(Records, OfficesAndStatusesStandOnceByName)
{
    dbCOfficeLocations offices;
    dbCPatientStatusList statuses;
    for (const char* pszName : {"main", "Annex"})
    {
        offices.AddOffice(pszName);
        statuses.AddStatus(pszName);
    }
    for (const char* pszRefused : {"MAIN ", " "})
    {
        EXPECT_EQ(ErrorOf([&] { offices.AddOffice(pszRefused); }), dbErrInvalid);
        EXPECT_EQ(ErrorOf([&] { statuses.AddStatus(pszRefused); }), dbErrInvalid);
    }
    offices.Load();
    statuses.Load();
    ASSERT_EQ(offices.GetCount() + statuses.GetCount(), 4);
    EXPECT_EQ(offices[0].GetOffice() + offices[1].GetOffice(), "Annexmain");
    EXPECT_EQ(statuses[0].GetStatus() + statuses[1].GetStatus(), "Annexmain");
    EXPECT_EQ(dbCOfficeLocations::GetOffice(offices[0].GetOfficeID()), "Annex");
    EXPECT_EQ(dbCPatientStatusList::GetStatus(statuses[1].GetStatusID()), "main");
}

TEST_F(Records, AnInsuranceCompanyWithPoliciesStays)
{
    dbCInsuranceCompany company;
    company.SetName("Sound Cover");
    company.SetPhone("555-0102");
    company.SetNote("calls back");
    company.SetAddress(FullPatient("A1").GetAddress(1));
    company.Save();
    dbCPatient patient = NewPatient("A1");
    dbCInsurance first, second;
    first.SetCompanyGUID(company.GetCompanyGUID());
    second.SetNumber("2");
    patient.AssignInsurance(first);
    patient.AssignInsurance(second);
    EXPECT_TRUE(patient.SetInsuranceGUID(second.GetInsuranceGUID()));
    EXPECT_FALSE(patient.SetInsuranceGUID("none"));
    patient.Save();
    dbCInsuranceCompanies companies;
    companies.Load();
    const auto stored = [&] {
        return database.Execute(
            "SELECT name || '|' || phone || '|' || note || '|' || type || '|' || company || '|'"
            " || street || '|' || city || '|' || state || '|' || postalCode || '|' || country"
            " FROM insuranceCompanies");
    };
    const auto before = stored();
    companies[0].Save();
    EXPECT_EQ(stored(), before) << "loaded as it was stored";
    EXPECT_EQ(ErrorOf([&] { companies.Delete(company.GetCompanyGUID()); }), dbErrInUse);
    EXPECT_EQ(dbCInsuranceCompanies::FindOrAdd(" sound COVER"), company.GetCompanyGUID());
    EXPECT_EQ(dbCInsuranceCompanies::FindOrAdd("\xC4rzte"), dbCInsuranceCompanies::FindOrAdd("\xE4RZTE "));
    EXPECT_EQ(companies.GetCount(), 1);
    companies.Load();
    EXPECT_EQ(companies.GetCount(), 2);
    patient.Load("A1");
    EXPECT_EQ(patient.GetInsurances()[0].GetNumber(), "2");
    EXPECT_EQ(patient.GetInsurances()[1].GetCompanyGUID(), company.GetCompanyGUID());
}

TEST_F(Records, EventsComeBackNewestFirstAndOutliveThePatient)
{
    CVeltrixLogin log;
    dbCPatient patient = Saved(NewPatient("A1"));
    log.AddNewPatientEvent(patient.GetGUID(), "first " + HardText());
    log.AddPatientModifiedEvent(patient.GetGUID(), "second");
    log.AddArchivedPatientEvent(patient.GetGUID(), "third");
    dbCPatients().DeletePatient("A1");
    log.AddPatientDeletedEvent(patient.GetGUID(), "fourth");
    {
        dbCTransaction transaction;
        log.AddNewPatientEvent("g", "rolled back");
    }
    dbTList<dbSAuditEvent> events;
    ASSERT_EQ(CVeltrixLogin::LoadEvents(events, 100), 4);
    EXPECT_EQ(events[0].strText, "fourth");
    EXPECT_EQ(events[0].nKind, dbAuditPatientDeleted);
    EXPECT_EQ(events[3].strText, "first " + HardText());
    EXPECT_EQ(events[3].nKind, dbAuditNewPatient);
    EXPECT_EQ(events[3].strPatientGUID, patient.GetGUID());
    EXPECT_FALSE(events[3].strUser.IsEmpty());
    EXPECT_TRUE(events[3].dateTime.IsSameDate(velCDate::Today()));
    EXPECT_EQ(CVeltrixLogin::LoadEvents(events, 1, events[1].nID), 1);
    EXPECT_EQ(events[0].strText, "second");
}

TEST_F(Records, OneRowOfAnOptionIsUpdatedSeveralAreLeftAlone)
{
    using Options = dbCApplicationOptionsContainer;
    CString strValue = "untouched";
    EXPECT_EQ(Options::GetApplicationOption("KEY", strValue), -1);
    EXPECT_EQ(strValue, "untouched");
    EXPECT_EQ(Options::SetApplicationOption("KEY", HardText()), 0);
    EXPECT_EQ(Options::SetApplicationOption("KEY", "two"), 0);
    Options rows("KEY");
    ASSERT_EQ(rows.GetCount(), 1);
    EXPECT_EQ(rows[0].nStatus, 1);
    dbSApplicationOption another;
    another.strKey = "KEY";
    another.strValue = "three";
    rows.InsertRow(another);
    EXPECT_EQ(Options::SetApplicationOption("KEY", "four"), -1);
    EXPECT_EQ(Options::GetApplicationOption("KEY", strValue), 0);
    EXPECT_EQ(strValue, "two");
}

TEST_F(Records, TreatmentsAndTheirHistory)
{
    dbCTreatmentStatusContainer::AddTreatment("Z", "Alpha");
    dbCTreatmentStatusContainer::AddTreatment("A", "Zeta");
    dbCTreatmentStatusContainer::AddTreatment("OLD", "Old", FALSE);
    EXPECT_EQ(ErrorOf([] { dbCTreatmentStatusContainer::AddTreatment("Z", "again"); }), dbErrInvalid);
    const dbCTreatmentStatusContainer active(1), all(0);
    ASSERT_EQ(active.GetCount(), 2);
    EXPECT_EQ(active[0].GetCode(), "Z");
    EXPECT_EQ(all.GetCount(), 3);

    dbCPatientTreatmentStatusHistoryTable history;
    dbCPatientTreatmentStatusHistoryRow row;
    row.SetpatID(dbNewGUID());
    EXPECT_EQ(ErrorOf([&] { history.InsertRow(row); }), dbErrNotFound);
    dbCPatient patient = Saved(FullPatient("A1"));
    row.SetpatID(patient.GetGUID());
    row.SetDescription("Alpha");
    row.SetDateTime(COleDateTime(2024, 1, 2, 3, 4, 5));
    history.InsertRow(row);
    EXPECT_TRUE(dbCPatients::IsGUID(row.GetptshID()));
    patCTimepoint timepoint = patient.GetTimepoint(1);
    timepoint.SetptshID(row.GetptshID());
    patient.SetTimepoint(1, timepoint);
    patient.Save();
    dbCTimepointsContainer timepoints;
    ASSERT_TRUE(timepoints.LoadByPatID(patient.GetGUID(), 0));
    ASSERT_EQ(timepoints.GetCount(), 3);
    EXPECT_EQ(timepoints[1].GetptshID(), row.GetptshID());
    EXPECT_EQ(timepoints[2].GetDateTime(), COleDateTime(2022, 5, 17, 14, 30, 59));
    ASSERT_TRUE(timepoints.LoadByPatID(patient.GetGUID(), 1));
    ASSERT_EQ(timepoints.GetCount(), 1);
    EXPECT_TRUE(dbCTimepointsContainer::Reactivate(timepoints[0].GettpID()));
    EXPECT_FALSE(dbCTimepointsContainer::Reactivate("none"));
    EXPECT_EQ(ErrorOf([&] { patient.Save(); }), dbErrChangedElsewhere) << "it would hide the timepoint again";
    EXPECT_FALSE(timepoints.LoadByPatID(patient.GetGUID(), 1));
}

TEST_F(Records, DiagnosticsByItemAndTimepoint)
{
    dbCPatient patient = Saved(FullPatient("A1"));
    const CString strItem = dbCDiagnosticGroup::DefineItem("Airway", "Clinical", "AW1", "Tonsils");
    dbCDiagnosticGroup::DefineItem("Airway", "Clinical", "AW2", "Adenoids");
    const dbCDiagnosticGroup group("Airway", "Clinical"), none("Airway", "Other");
    EXPECT_EQ(group.GetItemCount(), 2);
    EXPECT_EQ(group.GetItem(1).GetItemCode(), "AW2");
    EXPECT_EQ(none.GetItemCount(), 0);
    dbCPatientDiagnostics writer(patient.GetGUID(), 0, "Clinical");
    dbCDiagnosticInfo info;
    info.SetValue(HardText());
    info.SetNote("note");
    writer.AddDiagnosticRecord(strItem, 1, info, 0, velCDate(2024, 1, 1));
    EXPECT_EQ(ErrorOf([&] { writer.AddDiagnosticRecord("none", 1, info, 0, velCDate(2024, 1, 1)); }),
              dbErrNotFound);
    EXPECT_TRUE(dbCPatientDiagnosisTreatmentsContainer::HasDiagnostics(patient.GetTimepoints()[1].GettpID()));
    EXPECT_FALSE(
        dbCPatientDiagnosisTreatmentsContainer::HasDiagnostics(patient.GetTimepoints()[0].GettpID()));
    patient.Save();
    const dbCPatientDiagnostics stored(patient.GetGUID(), 0, "Clinical");
    ASSERT_EQ(stored.GetCount(), 1) << "saving the patient keeps what refers to its timepoints";
    EXPECT_EQ(stored[0].strValue, HardText());
    EXPECT_EQ(stored[0].strNote, "note");
    EXPECT_EQ(stored[0].strDtID, group.GetItem(0).GetdtID());
    EXPECT_EQ(stored[0].strTpID, patient.GetTimepoints()[1].GettpID());
    EXPECT_EQ(stored[0].nTP, 1);
    EXPECT_EQ(dbCPatientDiagnostics(patient.GetGUID(), 2, "Clinical").GetCount(), 1) << "number one and one";
    EXPECT_EQ(dbCPatientDiagnostics(patient.GetGUID(), 1, "Clinical").GetCount(), 0);
    EXPECT_TRUE(dbCAcPatientsContainer::IsPatientGUIDInUse(patient.GetGUID()));
    EXPECT_FALSE(dbCAcPatientsContainer::IsPatientGUIDInUse(dbNewGUID()));
}

TEST_F(Records, OnlyPendingTransferTasksAreRead)
{
    EXPECT_TRUE(dbCRaskoTasksContainer::TableExists());
    dbSRaskoTask task;
    task.strPatientGUID = "G";
    task.strData = "<patient/>";
    task.nTotalBytes = 5'000'000'000;
    dbCRaskoTasksContainer::InsertRow(task);
    task.nStatus = 100;
    dbCRaskoTasksContainer::InsertRow(task);
    dbCRaskoTasksContainer tasks;
    ASSERT_EQ(tasks.LoadPending("G"), 1);
    EXPECT_EQ(tasks[0].nStatus, -2);
    EXPECT_EQ(tasks[0].nTotalBytes, 5'000'000'000);
    EXPECT_EQ(tasks.LoadPending("H"), 0);
    dbSServicePatient row{"G", "1", "2"};
    dbCServicePatients::Store(row);
    row.strServiceID = "3";
    row.strOwnerGUID = "{O}";
    dbCServicePatients::Store(row);
    row.strOwnerGUID = "";
    dbCServicePatients::Store(row);
    EXPECT_FALSE(dbCServicePatients::FindByGUID("H", row));
    EXPECT_FALSE(dbCServicePatients::FindByServiceID("", row));
    const auto text = [&] {
        return row.strPatientGUID + row.strServiceID + row.strServiceGUID + row.strOwnerGUID;
    };
    EXPECT_TRUE(dbCServicePatients::FindByGUID("G", row));
    EXPECT_EQ(text(), "G32{O}") << "the owner that is known stays";
    row = {};
    EXPECT_TRUE(dbCServicePatients::FindByServiceID("3", row));
    EXPECT_EQ(text(), "G32{O}");
}
} // namespace
