// The byte form of a patient and loading it into another practice.

#include "tests/patients/testdatabase.h"

namespace
{
/// Reads a patient; FALSE, with the patient unchanged, when the framework's or the library's exception is
/// thrown.
bool Read(dbCPatient& patient, std::string bytes, int nFormat)
{
    CMemFile file(reinterpret_cast<BYTE*>(bytes.data()), static_cast<UINT>(bytes.size()));
    CArchive ar(&file, CArchive::load);
    try
    {
        patient.Serialize(ar, nFormat);
        return true;
    }
    catch (CException* e)
    {
        EXPECT_TRUE(e->IsKindOf(RUNTIME_CLASS(CArchiveException)) ||
                    e->IsKindOf(RUNTIME_CLASS(dbCException)));
        e->Delete();
        return false;
    }
}

TEST(PatientArchive, LoadedIntoAnEmptyPracticeEveryFieldIsEqual)
{
    std::string bytes;
    PatientImage stored, storedDoctor;
    CString strDoctor;
    {
        TestDatabase home;
        dbCPatient patient = Saved(ListedPatient("A1", HardText(), "Frost"));
        dbCPerson guardian, doctor;
        patient.GetPersonInfo(dbPersonGuardian, guardian);
        patient.GetPersonInfo(dbPersonTreatingDoctor, doctor);
        strDoctor = doctor.GetPersonGUID();
        dbCPatientTreatmentStatusHistoryRow treatment;
        treatment.SetpatID(patient.GetGUID());
        treatment.SetDescription("Phase 1");
        treatment.SetNewCode("P1");
        treatment.SetDateTime(velCDate(2024, 1, 3));
        dbCPatientTreatmentStatusHistoryTable().InsertRow(treatment);
        patient.GetTimepoints()[0].SetptshID(treatment.GetptshID());
        patient.Save();
        const CString strItem = dbCDiagnosticGroup::DefineItem("Airway", "Clinical", "AW1", "Tonsils");
        dbCDiagnosticInfo info;
        info.SetValue("enlarged");
        info.SetNote("a note");
        dbCPatientDiagnostics(patient.GetGUID(), 0, "Clinical")
            .AddDiagnosticRecord(strItem, 2, info, 0, velCDate(2024, 1, 4));
        // An item that the other practice does not have.
        dbCPatientDiagnostics(patient.GetGUID(), 0, "Clinical")
            .AddDiagnosticRecord(dbCDiagnosticGroup::DefineItem("Bite", "Clinical", "OB1", "Open"), 1, info,
                                 1, velCDate(2024, 1, 5));
        for (const CString& strPerson : {guardian.GetPersonGUID(), strDoctor, patient.GetGUID()})
        {
            dbCPersonEmails emails;
            emails.LoadByPersonGUID(strPerson);
            emails.Add("b@x.org");
            emails.Add("c@x.org");
            emails.Save(strPerson);
        }
        dbCPatientEmailsContainer rows;
        rows.Add({"{P}", "Family", "Home", "Ms", HardText(), "Lee", "m@x.org"});
        rows.Save(patient.GetGUID());
        patient.Load("A1");
        bytes = Image(patient);
        stored = home.ImageOf("A1");
        storedDoctor = home.ImageOf(strDoctor);
        dbCPatient own;
        EXPECT_TRUE(Read(own, bytes, 1));
        EXPECT_EQ(own.GetOfficeID(), patient.GetOfficeID());
    }
    TestDatabase away;
    dbCPatientStatusList().AddStatus("FROST");
    dbCDiagnosticGroup::DefineItem("Airway", "Clinical", "aw1", "Tonsils");
    dbCPatient archived;
    ASSERT_TRUE(Read(archived, bytes, 1));
    EXPECT_EQ(Image(archived), bytes);
    ASSERT_TRUE(dbCPatients().AddFromArchive(archived));
    EXPECT_FALSE(dbCPatients().AddFromArchive(archived)) << "it is there already";
    PatientImage loaded = away.ImageOf("A1");
    for (const char* pszNew : {"insurance.0.guid", "referral.0.guid"})
        stored[pszNew] = loaded[pszNew];
    stored["status"] = "FROST"; // matched by name; the office is added
    EXPECT_EQ(Differences(stored, loaded), std::vector<std::string>());
    storedDoctor["doctor.treating"] = "0"; // of another practice
    storedDoctor["doctor.type"] = "";
    EXPECT_EQ(Differences(storedDoctor, away.ImageOf(strDoctor)), std::vector<std::string>());
    const dbCDiagnosticGroup made("Bite", "Clinical"), known("Airway", "Clinical");
    EXPECT_EQ(known.GetItemCount(), 1);
    ASSERT_EQ(made.GetItemCount(), 1);
    EXPECT_EQ(made.GetItem(0).GetItemCode() + made.GetItem(0).GetTitle(), "OB1OB1");
}

TEST(PatientArchive, LoadedAgainWhereItWasItsListsAreKnownWhateverTheyAreCalledNow)
{
    TestDatabase database;
    ListedPatient("A1", "text", "Frost").Save();
    const std::string bytes = Image(Loaded("A1"));
    PatientImage expected = database.ImageOf("A1");
    dbCPatients().DeletePatient("A1");
    for (const char* pszList : {"offices", "statuses", "insuranceCompanies"})
        database.Execute(
            (std::string("UPDATE ") + pszList + " SET name = 'Other', nameKey = 'other'").c_str());
    database.Execute("UPDATE persons SET lastName = 'Other'; UPDATE doctors SET lastKey = 'other'");
    dbCPatient archived;
    ASSERT_TRUE(Read(archived, bytes, 1));
    ASSERT_TRUE(dbCPatients().AddFromArchive(archived));
    expected["office"] = expected["status"] = expected["insurance.0.company"] = "Other";
    expected["treating.doctor"] = "Other, Frost";
    expected["referral.0.doctor"] = "Other, Tom";
    PatientImage loaded = database.ImageOf("A1");
    for (const char* pszNew : {"insurance.0.guid", "referral.0.guid"})
        expected[pszNew] = loaded[pszNew];
    EXPECT_EQ(Differences(expected, loaded), std::vector<std::string>());
    EXPECT_EQ(database.Execute("SELECT count(*) FROM insuranceCompanies"), std::vector<std::string>{"1"});
    EXPECT_EQ(dbCDoctors().Enum(), 2);
}

TEST(PatientArchive, TheEarlierFormatCarriesItsFields)
{
    dbCPatient patient = FullPatient("A1", HardText());
    patient.SetGUID(dbNewGUID());
    dbCDiagnosticInfo info;
    info.SetGroupTitle("Airway");
    info.SetItemCode("AW1");
    info.SetTP(1);
    patient.GetArchiveDiagnostics().Add(info);
    const std::string bytes = Image(patient, 2);
    dbCPatient read;
    EXPECT_FALSE(Read(read, bytes, 1)) << "told from the present format";
    read.Initialize();
    ASSERT_TRUE(Read(read, bytes, 2));
    EXPECT_EQ(read.GetLastname(), HardText() + "0");
    EXPECT_EQ(read.GetTimepoints()[2].GetImageBits(0), 4U);
    ASSERT_EQ(read.GetArchiveDiagnostics().GetCount(), 1);
    EXPECT_EQ(read.GetArchiveDiagnostics()[0].GetTP(), 1);

    // What has no sum is looked at the more closely.
    EXPECT_FALSE(Read(read, bytes + '\0', 2)) << "something behind the end";
    patient.SetNickname("NUL INSIDE");
    std::string zero = Image(patient, 2);
    zero[zero.find("NUL INSIDE") + 3] = '\0';
    EXPECT_FALSE(Read(read, zero, 2));
}

TEST(PatientArchive, CutShortOrDamagedAnywhereItIsRefusedAndChangesNothing)
{
    dbCPatient patient = FullPatient("A1");
    patient.SetGUID(dbNewGUID());
    for (const int nFormat : {1, 2})
    {
        const std::string bytes = Image(patient, nFormat);
        dbCPatient read = NewPatient("KEPT"), any;
        for (size_t n = 0; n < bytes.size(); ++n)
        {
            ASSERT_FALSE(Read(read, bytes.substr(0, n), nFormat)) << nFormat << ": " << n;
            std::string damaged = bytes;
            damaged[n] = static_cast<char>(nFormat == 1 ? damaged[n] ^ 0x81 : '\xFF');
            // The earlier format has no sum: lengths and counts may lie, but what is read is always usable.
            if (Read(nFormat == 1 ? read : any, damaged, nFormat))
            {
                ASSERT_EQ(nFormat, 2) << n;
                EXPECT_TRUE(dbCPatients::IsGUID(any.GetGUID())) << n;
                EXPECT_LE(any.GetTimepoints().GetCount(), 100) << n;
            }
        }
        EXPECT_EQ(read.GetID(), "KEPT");
        EXPECT_TRUE(Read(read, bytes, nFormat));
    }
    EXPECT_FALSE(Read(patient, std::string("VPA1\xFF\xFF\xFF\x03") + std::string(4, '\0'), 1))
        << "claims 64 MB";
}

TEST(PatientArchive, AnIDThatIsAPathIsRefused)
{
    for (const char* pszID : {"..\\..\\EVIL", "C:EVIL", "A/B", ""})
    {
        dbCPatient patient = FullPatient("A1"), read;
        patient.SetGUID(dbNewGUID());
        patient.SetID(pszID);
        EXPECT_FALSE(Read(read, Image(patient), 1)) << pszID;
    }
}

TEST(PatientArchive, ATakenIDStoresNothing)
{
    TestDatabase database;
    NewPatient("A1").Save();
    dbCPatient patient = FullPatient("a1");
    patient.SetGUID(dbNewGUID());
    dbCPerson doctor;
    doctor.SetPersonGUID(dbNewGUID());
    doctor.SetLastname("Only In The Archive");
    patient.AddPersonInfo(dbPersonTreatingDoctor, doctor);
    EXPECT_FALSE(dbCPatients().AddFromArchive(patient));
    EXPECT_EQ(dbCDoctors().Enum(), 0);
    EXPECT_EQ(dbCPatients().GetCount(), 1);

    // A doctor without a name cannot be kept; the patient can.
    patient.SetID("B2");
    doctor.SetLastname(" ");
    patient.SetPersonInfo(dbPersonTreatingDoctor, doctor);
    EXPECT_TRUE(dbCPatients().AddFromArchive(patient));
    EXPECT_FALSE(patient.GetPersonInfo(dbPersonTreatingDoctor, doctor));
    EXPECT_EQ(dbCDoctors().Enum(), 0);
}
} // namespace
